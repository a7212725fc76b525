#include "base/arguments.h"

namespace base {

Arguments::Arguments(int argc, const char* const* argv) : m_texts(argv, argv + argc) { List(); }

}  // namespace base
