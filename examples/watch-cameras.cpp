// SPDX-License-Identifier: MIT
// Reports cameras that come and go, until Enter is pressed or the input ends.
#include <Session.h>

#include <iostream>

namespace ia = ImageAcquisition::Session;

int main()
try {
    // Called on a thread of the watch's own: an application hands the news to its own thread here.
    ia::Events const events([](ia::Event const& event) {
        std::cout << toText(event.action) << " " << event.camera.description() << std::endl;
    });
    std::cout << "Plug a camera in or out; Enter ends." << std::endl;
    std::string line;
    std::getline(std::cin, line);
} catch (ia::Error const& error) {
    std::cerr << "watch-cameras: " << error.what() << "\n";
    return 1;
}
