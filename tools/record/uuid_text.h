// UUIDs of stored records, for people.
#pragma once

#include <cstdint>
#include <string>

namespace tool {

// As the library prints its 16 bytes.
std::string uuid_text(const uint8_t* uuid);

// What the words of a device UUID say: "family 6, model 0x060316, ...", with the chips that have
// it.
std::string device_uuid_meaning(const uint8_t* uuid);

// What the words of a driver UUID say: "driver version 1, layout version 3".
std::string driver_uuid_meaning(const uint8_t* uuid);

}  // namespace tool
