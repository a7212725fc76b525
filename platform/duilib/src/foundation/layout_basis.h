#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace DuiLib {

// What every layout rests on (the display scale, the fonts, the language, the text measurer) knows no windows: it says
// that it changed, and whoever shows something listens. UI turn.
class LayoutBasisListener {
public:
    // `changed` is called at each change, from now on until this is destroyed. It makes and destroys no listener.
    explicit LayoutBasisListener(std::function<void()> changed) : m_changed(std::move(changed)) {
        All().push_back(this);
    }
    ~LayoutBasisListener() { std::erase(All(), this); }
    LayoutBasisListener(const LayoutBasisListener&) = delete;
    LayoutBasisListener& operator=(const LayoutBasisListener&) = delete;

private:
    friend void TellLayoutBasisChanged();  // the one that calls

    // Never destroyed: windows with static storage may go later.
    static std::vector<LayoutBasisListener*>& All() {
        static auto& all = *new std::vector<LayoutBasisListener*>;
        return all;
    }

    const std::function<void()> m_changed;
};

inline void TellLayoutBasisChanged() {
    for (const LayoutBasisListener* listener : LayoutBasisListener::All()) listener->m_changed();
}

}  // namespace DuiLib
