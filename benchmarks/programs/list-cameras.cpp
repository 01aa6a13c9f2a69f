// SPDX-License-Identifier: MIT
// How long a list of all cameras takes, and how long each of them takes to open if that is asked
// for:
//   list-cameras [--open]
// Prints a line of numbers: cameras, seconds of the list, and with --open the seconds and the
// number of controls of the first camera.
#include "Stopwatch.h"

#include <ImageAcquisition.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace ImageAcquisition;

int main(int argc, char** argv)
{
    bool const opened = argc == 2 && std::strcmp(argv[1], "--open") == 0;
    if (argc > 1 && !opened) {
        std::fputs("usage: list-cameras [--open]\n", stderr);
        return 2;
    }
    ICameraFactory& factory = ICameraFactory::getUniqueInstance();
    Stopwatch const listing;
    std::unique_ptr<IDeviceList> const list(factory.createDeviceList());
    std::printf("%d %.6f", list->size(), listing.seconds());
    if (opened) {
        Stopwatch const opening;
        std::unique_ptr<IBlockingCamera> const camera(factory.createBlockingCamera(list->at(0)));
        if (!camera) {
            std::fputs("list-cameras: the camera does not open\n", stderr);
            return EXIT_FAILURE;
        }
        std::printf(" %.6f %d", opening.seconds(), camera->controlNumber());
    }
    std::puts("");
}
