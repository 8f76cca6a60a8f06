#pragma once

#include "receiver/main/driveroptions.h"
#include "receiver/sources/iqsource.h"
#include "receiver/values/catalogue.h"

namespace Receiver {

// What the values start with: the source's facts, and where the channels stand. In the scene they
// stand on its emitters, on a recording at its centre.
ReceiverSetup receiverSetup(const DriverOptions& options, const IqSource& source);

}  // namespace Receiver
