#include "kernel/ui_turn.h"

int main() { const kernel::UiTurn turn; }
