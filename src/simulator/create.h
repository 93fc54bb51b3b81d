// The simulator's one entry for the library.
#ifndef ORMIDEX_SIMULATOR_CREATE_H_
#define ORMIDEX_SIMULATOR_CREATE_H_

#include <memory>
#include <string>

#include "device/driver_gateway.h"

namespace ormidex::simulator {

// Builds the cameras that `description` names. Null when it cannot be read; *error
// then says in one line what is wrong and where.
std::unique_ptr<device::DriverGateway> CreateFromDescription(const char* description,
                                                             std::string* error);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_CREATE_H_
