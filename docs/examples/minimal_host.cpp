// The smallest host: a window model with the accessory page in it. It prints the page's height messages, leaves the
// page after ten seconds, and needs a running update service.
//
//     minimal_host PATH/libAccessoriesUpgrade.so PATH/components/brindle/res/language/en-US.xml
#include <exception>
#include <iostream>

#include "channel_client.h"
#include "duilib/duilib.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"
#include "module_loader/page_module.h"

int main(int argc, char** argv) {
    if (argc != 3) return 1;
    try {
        // The host's ear for the page: the content height, in design pixels, as decimal digits.
        IPCMessageClient layout(IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT);
        channel_client::Listen(layout, channel::from_page::IPC_MSG_CONTENT_HEIGHT, [](const channel::Decimal& height) {
            std::cout << "content height " << height.digits << std::endl;
        });

        const PageModule module(argv[1]);
        const kernel::UiTurn turn;  // whoever touches controls or page code holds it
        DuiLib::UICulture::GetInstance()->Load(argv[2]);

        // The window's tree with a container for the page, and the pump that passes clicks on to it.
        DuiLib::CNotifyPump pump;
        DuiLib::CPaintManagerUI manager;
        auto* const page = new DuiLib::CVerticalLayoutUI;  // the manager owns it
        manager.AttachRoot(page);
        manager.AddNotifyPump(&pump);
        manager.SetClientSize({592, 1000});

        module.CreateSetting(&manager, &pump, page);
        kernel::Sleep(10000);  // gives the turn up: the page builds its rows meanwhile
        module.CloseWnd();
        page->RemoveAll();  // in the same turn: the page's controls are the host's to discard
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "minimal_host: " << error.what() << std::endl;
        return 1;
    }
}
