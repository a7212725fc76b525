#pragma once

namespace DuiLib {

class Canvas;
class CPaintManagerUI;

// What the texts of a window are measured and painted with. It has a canvas while the window is being painted, and what
// is painted at other times goes nowhere.
class PaintDC {
public:
    explicit PaintDC(CPaintManagerUI* manager) : m_manager(manager) {}
    CPaintManagerUI* Manager() const { return m_manager; }
    Canvas* GetCanvas() const { return m_canvas; }
    void SetCanvas(Canvas* canvas) { m_canvas = canvas; }

private:
    CPaintManagerUI* m_manager;
    Canvas* m_canvas = nullptr;
};

}  // namespace DuiLib
