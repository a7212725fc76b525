// The smallest host: a window model with the accessory page in it. It prints the page's height messages and leaves the
// page once it shows something; when it stays empty for ten seconds, or as many as are named, that is an error. It
// needs a running update service.
//
//     minimal_host PATH/libAccessoriesUpgrade.so PATH/components [SECONDS]
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include "channel_client.h"
#include "duilib/duilib.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"
#include "module_loader/page_module.h"

namespace {

// Where layouts, texts and pictures are: in this folder, which is called components.
void LoadResources(const std::filesystem::path& components) {
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    resources->SetResourceBase(components / ".." / "bin");
    resources->SetSkinFolder(components / "brindle" / "res");
    DuiLib::UICulture::GetInstance()->Load(components / "brindle" / "res" / "language" / "en-US.xml");
}

// Returns once it is so, looking ten times a second; page code runs meanwhile.
void WaitFor(const bool& shown, int seconds) {
    for (int i = 0; i < 10 * seconds && !shown; ++i) kernel::Sleep(100);  // gives the turn up
    if (!shown) throw std::runtime_error("the page stays empty");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) return 1;
    try {
        // The host's ear for the page: the content height, in design pixels, as decimal digits.
        bool shown = false;
        IPCMessageClient layout(IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT);
        channel_client::Listen(layout, channel::from_page::IPC_MSG_CONTENT_HEIGHT, [&](const channel::Decimal& height) {
            std::cout << "content height " << height.Number().value_or(0) << std::endl;
            shown = true;
        });

        const PageModule module(argv[1]);
        const kernel::UiTurn turn;  // whoever touches controls or page code holds it
        LoadResources(argv[2]);

        // The window's tree with a container for the page, and the pump that passes clicks on to it.
        DuiLib::CNotifyPump pump;
        DuiLib::CPaintManagerUI manager;
        auto* const page = new DuiLib::CVerticalLayoutUI;  // the manager owns it
        manager.AttachRoot(page);
        manager.AddNotifyPump(&pump);
        manager.SetClientSize({592, 1000});

        module.CreateSetting(&manager, &pump, page);
        WaitFor(shown, argc == 4 ? std::stoi(argv[3]) : 10);
        module.CloseWnd();  // the list that is being built is built to its end
        page->RemoveAll();  // in the same turn: the page's controls are the host's to discard
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "minimal_host: " << error.what() << std::endl;
        return 1;
    }
}
