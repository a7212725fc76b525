// A layout file: what it describes is built, laid out and painted in a window at two scales, and meets a pointer and
// keys.

#include <memory>

#include "duilib/duilib.h"
#include "fixed_cell_measurer.h"
#include "fuzz_target.h"
#include "kernel/ui_turn.h"

namespace {

using namespace DuiLib;

void Show(CControlUI* root) {
    CPaintManagerUI window;
    window.SetClientSize({400, 300});
    window.AttachRoot(root);
    PaintSurface picture;
    for (const unsigned scale : {100u, 275u}) {
        CResourceManager::GetInstance()->SetScale(scale);
        window.Layout();
        window.MouseMove({200, 150});
        window.MouseWheel({200, 150}, 3);
        window.KeyDown(DuiKey::kTab);
        window.Tick(CPaintManagerUI::TimePoint(std::chrono::hours(scale)));
        window.Paint(picture);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const kernel::UiTurn turn;
    static FixedCellMeasurer cells({10, 20});
    CRenderEngine::SetTextMeasurer(&cells);
    SetDiagnosticSink([](const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const kernel::UiTurn turn;
    const std::filesystem::path& file = fuzz::WriteInput(fuzz::TextOf(data, size));
    CDialogBuilder builder;
    std::unique_ptr<CControlUI> root(builder.Create(file.wstring()));
    fuzz::Require(builder.GetError().Str().empty() == (root != nullptr), "without a tree there is a reason");
    if (root) Show(root.release());
    return 0;
}
