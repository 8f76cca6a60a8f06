#include "valueframework/isupporttransaction.h"
#include "valueframework/ivtclient.h"
#include "valueframework/treeitem.h"
#include "valueframework/valuebase.h"

// The destructors stand here so that each interface has its type identity in this library alone.

TreeItem::~TreeItem() = default;
IValue::~IValue() = default;
IDeleteSubject::~IDeleteSubject() = default;
Kest::IHasTimerCallback::~IHasTimerCallback() = default;
IOptimizeTrigger::~IOptimizeTrigger() = default;
ISupportTransaction::~ISupportTransaction() = default;
IVtClient::~IVtClient() = default;
