#include "accessory_update_config/accessory_update_config.h"
#include "seam.h"

bool AccessoryUpdateConfig::IsAccessoryApp(const std::wstring& deviceKey) {
    seam::Get().companionQuestions.push_back(L"app:" + deviceKey);
    return seam::Get().companions[deviceKey].isApp;
}

bool AccessoryUpdateConfig::IsAccessoryAppRunning(const std::wstring& deviceKey) {
    seam::Get().companionQuestions.push_back(L"running:" + deviceKey);
    return seam::Get().companions[deviceKey].running;
}

void AccessoryUpdateConfig::Load(const std::filesystem::path&) {}
