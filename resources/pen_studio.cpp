// The companion program of the sample pen. Runs until its standard input ends.
#include <iostream>
#include <string>

int main() {
    std::cout << "pen_studio runs" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
}
