#pragma once

// The workbench's side of the receiver common library; the application sets it from its configuration.
namespace ReceiverCommonHost {

void SetConnectionTimeout(int milliseconds);  // of ConnectionState; 60000 until told otherwise
void SetBoxedVersion(bool boxed);

}  // namespace ReceiverCommonHost
