#include "foundation/layout_basis.h"

#include <utility>
#include <vector>

namespace DuiLib {

namespace {

std::vector<LayoutBasisListener*>& Listeners() {
    static auto& listeners = *new std::vector<LayoutBasisListener*>;
    return listeners;
}

}  // namespace

LayoutBasisListener::LayoutBasisListener(std::function<void()> changed) : m_changed(std::move(changed)) {
    Listeners().push_back(this);
}

LayoutBasisListener::~LayoutBasisListener() { std::erase(Listeners(), this); }

void TellLayoutBasisChanged() {
    for (const LayoutBasisListener* listener : Listeners()) listener->m_changed();
}

}  // namespace DuiLib
