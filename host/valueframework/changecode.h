#ifndef HOST_CHANGECODE_H
#define HOST_CHANGECODE_H

// What a notification is about. Observers ignore every code that they do not know.
enum TChangeCode
{
    CC_STATE = 2,          // the subject's state changed; read GetState()
    CC_VALUE = 3,          // the subject has a new value
    CC_DESCRIPTION = 4,    // limits, unit, items, write permission, pending flag or last answer changed
    CC_HOOKS_SERVED = 15,  // from a tree client: the driver has answered a hook
    CC_CONNECTED = 16,     // from a tree client: connection to the driver established
    CC_DISCONNECTED = 17,  // from a tree client: connection to the driver lost

    CC_FORCE_32_BIT = 0x7fffffff
};

// Whether a value can be used.
enum TValueState
{
    VS_USABLE = 0,
    VS_DELETING = 1,       // going away: every observer must let go of it now
    VS_NOT_AVAILABLE = 2,  // the driver says that it does not serve this value at present
    VS_STALE = 3,          // the driver is away; the content is the last one it told

    VS_FORCE_32_BIT = 0x7fffffff
};

#endif
