#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "channel/byte_cursor.h"

// The records that travel serialized inside a payload, in declaration and wire order. Values.

// Progress of one package's download or installation.
struct PkgDownloadProcess {
    std::string deviceKey;      // ANSI code page, exactly as the list gave it
    std::int32_t progress = 0;  // [percent] 100 and more means installing
};

// One accessory that has an update.
struct AccessoryVersionDataInfo {
    std::string deviceKey;   // ANSI code page
    std::wstring modelId;    // also the resource id of the display name
    std::wstring imagePath;  // relative to the skin folder
    std::wstring version;
    std::vector<std::wstring> descLines;  // device information
    std::uint64_t reserved = 0;           // carried along, not used
    bool isDriver = false;                // driver or firmware; otherwise a companion app
};

// Decoders and encoders of the records over a byte cursor.
//
// Fields stand one behind the other without padding, little-endian:
//     uint32, int32    4 bytes              narrow string  uint32 byte count, the bytes
//     reserved         8 bytes              wide string    uint32 count of UTF-16 units, the units (2 bytes each)
//     bool             1 byte               vector         uint32 element count, the elements
// The two payloads, a progress record and a list, begin with a uint32 marker, which is 1.
//
// A decoder never reports failure. What cannot be read leaves 0, or for a text whose content is missing a text of the
// announced length in zero characters; decoding goes on at the same byte. A marker other than 1 leaves the destination
// untouched. No bound but memory limits counts: an absurd one throws std::bad_alloc or std::length_error.
//
// Where wchar_t has 32 bits, surrogate pairs are joined while reading and split while writing.
void ReadString(IIPCDataIO& io, std::string& text);
void ReadWString(IIPCDataIO& io, std::wstring& text);
void ReadRecord(IIPCDataIO& io, AccessoryVersionDataInfo& record);
void ReadRecord(IIPCDataIO& io, PkgDownloadProcess& record);
void ReadRecord(IIPCDataIO& io, std::vector<AccessoryVersionDataInfo>& list);

void WriteString(IIPCDataIO& io, const std::string& text);
void WriteWString(IIPCDataIO& io, const std::wstring& text);
void WriteRecord(IIPCDataIO& io, const AccessoryVersionDataInfo& record);
void WriteRecord(IIPCDataIO& io, const PkgDownloadProcess& record);
void WriteRecord(IIPCDataIO& io, const std::vector<AccessoryVersionDataInfo>& list);
