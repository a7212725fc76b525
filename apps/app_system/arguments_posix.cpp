#include "arguments.h"

namespace app_system {

Arguments::Arguments(int argc, const char* const* argv) : m_texts(argv, argv + argc) { List(); }

}  // namespace app_system
