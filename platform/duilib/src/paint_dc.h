#pragma once

namespace DuiLib {

class CPaintManagerUI;

// Belongs to a window without a surface: text is measured with it, and what would be painted goes nowhere.
class PaintDC {
public:
    explicit PaintDC(CPaintManagerUI* manager) : m_manager(manager) {}
    CPaintManagerUI* Manager() const { return m_manager; }

private:
    CPaintManagerUI* m_manager;
};

}  // namespace DuiLib
