// SPDX-License-Identifier: MIT
// Captures ten frames and writes the last one as a picture:
//   capture-frames FILE.ppm [CAMERA [SELECTION]]
//   capture-frames microscope.ppm serial:VC1001 "YUYV 640x480@30"
#include <Session.h>

#include <fstream>
#include <iostream>

namespace ia = ImageAcquisition::Session;

namespace
{

void write(ia::Picture const& picture, char const* path)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << picture.width() << " " << picture.height() << "\n255\n";
    file.write(reinterpret_cast<char const*>(picture.rgb().data()),
               static_cast<std::streamsize>(picture.rgb().size()));
    if (!file.flush()) {
        throw std::runtime_error(std::string(path) + " cannot be written");
    }
}

} // namespace

int main(int count, char** arguments)
try {
    if (count < 2) {
        throw std::runtime_error("usage: capture-frames FILE.ppm [CAMERA [SELECTION]]");
    }
    ia::Camera camera = ia::Camera::open(count > 2 ? arguments[2] : "0");
    std::cout << camera.select(count > 3 ? arguments[3] : "").text() << "\n";

    int taken = 0;
    ia::Stream stream = camera.stream();
    for (ia::Frame const& frame : stream) { // each goes back at the next step
        std::cout << "frame " << frame.number() << ": " << frame.bytes().size() << " bytes\n";
        if (++taken == 10) {
            ia::Picture picture;
            picture.convert(frame);
            write(picture, arguments[1]);
            break;
        }
    }
    std::cout << stream.statistics() << "\n";
} catch (std::exception const& error) {
    std::cerr << "capture-frames: " << error.what() << "\n";
    return 1;
}
