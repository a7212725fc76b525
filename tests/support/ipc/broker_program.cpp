// A broker in a process of its own, which a test may kill: serves the pipe of that name until its input ends, and says
// "serving" when it does.

#include <iostream>
#include <string>

#include "base/text.h"
#include "ipc_client/ipc_broker.h"

int main(int, char** argv) {
    IPCBroker broker(base::WideFromUtf8(argv[1]));
    broker.Start();
    std::cout << "serving" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
}
