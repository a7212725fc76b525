// A decode vector: payload bytes, the record they make, and where the reader stands afterwards.
#include "base/text.h"
#include "channel/payload.h"
#include "ipc/ipc_data_io.h"
#include "scenario.h"

namespace {

using nlohmann::json;

json Units(const std::wstring& text) {
    json units = json::array();
    for (std::wstring_view rest = text; !rest.empty();) {
        const auto character = static_cast<unsigned>(base::TakeCharacter(rest));
        if (character <= 0xFFFF) {
            units.push_back(character);
        } else {
            units.push_back(0xD800 + ((character - 0x10000) >> 10));
            units.push_back(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return units;
}

json ToJson(const PkgDownloadProcess& record) {
    return {{"deviceKey", ToHex(record.deviceKey)}, {"progress", record.progress}};
}

json ToJson(const AccessoryVersionDataInfo& record) {
    json lines = json::array();
    for (const std::wstring& line : record.descLines) lines.push_back(Units(line));
    return {{"deviceKey", ToHex(record.deviceKey)},
            {"modelId", Units(record.modelId)},
            {"imagePath", Units(record.imagePath)},
            {"version", Units(record.version)},
            {"descLines", lines},
            {"reserved", record.reserved},
            {"isDriver", record.isDriver}};
}

json ToJson(const std::vector<AccessoryVersionDataInfo>& list) {
    json records = json::array();
    for (const AccessoryVersionDataInfo& record : list) records.push_back(ToJson(record));
    return records;
}

template <class Record>
std::string Check(const json& vector) {
    std::string payload = FromHex(vector.at("data"));
    TagIPCMessageItem item;
    item.dataLen = static_cast<std::int32_t>(payload.size());
    item.data = payload.empty() ? nullptr : payload.data();
    IPCDataIO reader(&item, 64, true, false);
    Record record{};
    ReadRecord(reader, record);
    const json seen = ToJson(record);
    if (seen != vector.at("expect")) return "expected " + vector.at("expect").dump() + "\n  seen     " + seen.dump();
    const unsigned cursor = vector.at("cursor");
    if (reader.Position() == cursor) return {};
    return "expected cursor " + std::to_string(cursor) + "\n  seen     " + std::to_string(reader.Position());
}

}  // namespace

std::string CheckDecodeVector(const json& vector) {
    const std::string record = vector.at("record");
    if (record == "PkgDownloadProcess") return Check<PkgDownloadProcess>(vector);
    if (record == "AccessoryVersionDataInfo[]") return Check<std::vector<AccessoryVersionDataInfo>>(vector);
    return "unknown record " + record;
}
