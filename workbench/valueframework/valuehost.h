#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVector>

#include "valueframework/valuebase.h"
#include "valueframework/valueselection.h"

// The workbench's own view of a value: everything that the driver tells about it beyond what the
// module's interface shows. Used by the controls, the link client and the application; never by
// plug-ins. GUI thread only.

enum class ValueType : quint8
{
    Bool,       // BoolValue
    Float,      // FloatValue
    Integer,    // IntValue
    Text,       // TextValue
    Selection,  // ValueSelection
    Other       // a type of a later library
};

// What is known of a value besides its content. Told by the driver, or by the maker of a local one.
struct ValueDescription
{
    ValueType type = ValueType::Text;
    QString unit;        // "Hz", "dBµV", "%"; empty: none
    double minimum = 0;  // limits hold only where hasLimits is set
    double maximum = 0;
    bool hasLimits = false;
    double step = 0;               // 0: the control chooses
    int precision = -1;            // digits after the point; -1: as many as needed
    bool writable = true;          // false: shown only
    bool event = false;            // every write notifies, also an equal one
    QVector<SelectionItem> items;  // of a selection, keys unique
};

// How the last write of an operator fared.
struct WriteStatus
{
    enum Answer
    {
        None,  // nothing was written since the value came
        Accepted,
        Clamped,    // taken with another content; the reason says which limit
        Refused,    // not taken; the content went back
        Unanswered  // the driver said nothing within the time allowed
    };
    bool pending = false;  // written, not answered yet
    Answer answer = None;
    QString reason;  // for the operator; empty when there is nothing to say
};

class IVtClient;
class Tree;

namespace ValueHost {

// --- tree -------------------------------------------------------------------------------------
void CreateTree();   // Tree::Instance() is null before
void DestroyTree();  // announces and destroys every value; clients are not touched

// A value at `path`, with its nodes. An existing value of the same type is kept and described
// anew; one of another type is deleted (announced) and replaced. Null, with a warning, when `path`
// names a node, leads through a value or is malformed, and for ValueType::Other; null as well when
// an observer deleted the value meanwhile. An invalid `content` leaves what stands.
ValueBase* Create(const QString& path, const ValueDescription& description, const QVariant& content);

int CountValues();

// All values at or below `path`, in the order in which they were made.
QVector<ValueBase*> ValuesBelow(const QString& path);

// --- content ----------------------------------------------------------------------------------
// bool, double, int, QString; a selection's current key as int. Invalid for ValueType::Other.
QVariant Content(const ValueBase& value);

// Writes content of that kind. Notifies all but `originator`, and only where it differs (event
// values always). False when the kind does not fit. Numbers are clamped to the limits where the
// tree owns the value.
bool SetContent(ValueBase& value, const QVariant& content, IObserver* originator);

ValueType TypeOf(const ValueBase& value);

// --- facts ------------------------------------------------------------------------------------
const ValueDescription& Description(const ValueBase& value);

// CC_DESCRIPTION where it differs. The type stays the value's own; limits that are no numbers or in
// the wrong order do not hold; of items with the same key the first is kept. A selection keeps its
// current key, or its first item becomes current (CC_VALUE). Where the tree owns the value, what
// stands is brought within the new limits.
void SetDescription(ValueBase& value, const ValueDescription& description);

void SetState(ValueBase& value, TValueState state);  // CC_STATE when it differs

const WriteStatus& Status(const ValueBase& value);
void SetStatus(ValueBase& value, const WriteStatus& status);  // CC_DESCRIPTION when it differs

// Microseconds since 1970 (UTC) of the content as the driver told it; 0: never told.
qint64 TimeStamp(const ValueBase& value);
void SetTimeStamp(ValueBase& value, qint64 microseconds);  // notifies nobody

// Whether a driver is the authority for this value (else the tree itself is).
bool IsMirrored(const ValueBase& value);
void SetMirrored(ValueBase& value, bool mirrored);

// The translation context set by SetTranslationNamespace; empty: none.
QByteArray TranslationContext(const ValueBase& value);

// --- clients ----------------------------------------------------------------------------------
// Makes a client known to VtClientCenter; null takes the name back. Not owned.
void SetClient(const QString& name, IVtClient* client);

}  // namespace ValueHost
