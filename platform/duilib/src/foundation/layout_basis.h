#pragma once

#include <functional>

namespace DuiLib {

// What every layout rests on (the display scale, the fonts, the language, the text measurer) knows no windows: it says
// that it changed, and whoever shows something listens. UI turn.
class LayoutBasisListener {
public:
    // `changed` is called at each change, from now on until this is destroyed. It makes and destroys no listener.
    explicit LayoutBasisListener(std::function<void()> changed);
    ~LayoutBasisListener();
    LayoutBasisListener(const LayoutBasisListener&) = delete;
    LayoutBasisListener& operator=(const LayoutBasisListener&) = delete;

private:
    friend void TellLayoutBasisChanged();  // the one that calls
    const std::function<void()> m_changed;
};

void TellLayoutBasisChanged();

}  // namespace DuiLib
