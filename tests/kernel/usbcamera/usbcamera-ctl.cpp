// SPDX-License-Identifier: MIT
#include "CommandServer.h"

#include <CLI/CLI.hpp>
#include <iostream>

int main(int argc, char** argv)
{
    std::string socket = "/run/usbcamera.sock";
    unsigned camera = 1;
    std::vector<std::string> words;
    CLI::App app{"Gives a command to a running usbcamera"};
    app.add_option("--socket", socket, "The socket of usbcamera");
    app.add_option("--camera", camera, "The camera's number, from 1 on");
    app.add_option("COMMAND", words, "The command and its arguments")->required();
    app.prefix_command();
    CLI11_PARSE(app, argc, argv);

    std::string line = std::to_string(camera);
    for (std::string const& word : words) {
        line += " " + word;
    }
    try {
        std::string const answer = UsbCamera::sendCommand(socket, line);
        bool const isGood = answer.compare(0, 2, "ok") == 0;
        std::size_t const space = answer.find(' ');
        std::string const rest = space == std::string::npos ? "" : answer.substr(space + 1);
        if (!rest.empty()) {
            (isGood ? std::cout : std::cerr) << (isGood ? "" : "usbcamera-ctl: ") << rest << '\n';
        }
        return isGood ? 0 : 1;
    } catch (std::exception const& error) {
        std::cerr << "usbcamera-ctl: " << error.what() << '\n';
        return 1;
    }
}
