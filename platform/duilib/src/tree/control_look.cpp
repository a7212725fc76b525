#include "tree/control_look.h"

#include <functional>
#include <unordered_map>

namespace DuiLib {

namespace {

// Looks at enough to tell most looks apart.
struct HashOfLook {
    std::size_t operator()(const ControlLook* look) const {
        std::size_t hash = 0;
        const auto add = [&hash](auto value) { hash = hash * 31 + std::hash<decltype(value)>{}(value); };
        add(look->ground.value);
        add(look->borderColor.value);
        add(look->borderFill.value);
        add(look->round.value.cx);
        add(look->picture.value.file.Key());
        add(look->groundPicture.value.file.Key());
        return hash;
    }
};

struct SameLook {
    bool operator()(const ControlLook* a, const ControlLook* b) const { return *a == *b; }
};

// Every look that a control has. Never destroyed: controls with static storage may go later.
auto& Looks() {
    static auto& looks =
        *new std::unordered_map<const ControlLook*, std::weak_ptr<const ControlLook>, HashOfLook, SameLook>;
    return looks;
}

}  // namespace

std::shared_ptr<const ControlLook> ShareLook(const ControlLook& look) {
    auto& looks = Looks();
    if (const auto found = looks.find(&look); found != looks.end()) return found->second.lock();
    std::shared_ptr<const ControlLook> shared(new ControlLook(look), [](const ControlLook* unused) {
        Looks().erase(unused);
        delete unused;
    });
    looks.emplace(shared.get(), shared);
    return shared;
}

}  // namespace DuiLib
