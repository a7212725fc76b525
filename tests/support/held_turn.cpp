// Holds the UI turn while the tests of a program run that use the toolkit's controls. A test about threads gives it up:
// `const kernel::UiTurnPause pause;`.
#include <gtest/gtest.h>

#include <optional>

#include "kernel/ui_turn.h"

namespace {

// Not a listener: tests that end their process run again in a child, which has none.
class HeldTurn : public testing::Environment {
    void SetUp() override { m_turn.emplace(); }
    void TearDown() override { m_turn.reset(); }

    std::optional<kernel::UiTurn> m_turn;
};

[[maybe_unused]] testing::Environment* const heldTurn = testing::AddGlobalTestEnvironment(new HeldTurn);  // owned there

}  // namespace
