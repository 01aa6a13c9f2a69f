// SPDX-License-Identifier: MIT
// Reports cameras that come and go, until Enter is pressed or the input ends.
#include <ICameraEvent.h>
#include <ICameraFactory.h>
#include <IContinuousCameraMonitor.h>

#include <iostream>
#include <memory>
#include <string>

using namespace ImageAcquisition;

namespace
{

char const* action(ICameraEvent const& event)
{
    switch (event.type()) {
    case 1:
        return "added";
    case 2:
        return "removed";
    case 3:
        return "changed";
    case 4:
        return "moved";
    default:
        return "something else";
    }
}

// Called on the monitor's own thread: an application hands the news to its own thread here.
class Reporter : public IContinuousCameraMonitor::IClient
{
public:
    void cameraEventReceived(ICameraEvent* received) override
    {
        std::unique_ptr<ICameraEvent> const event(received);
        std::cout << event->deviceSystemName() << ": " << action(*event) << std::endl;
    }
};

} // namespace

int main()
{
    Reporter reporter;
    std::unique_ptr<IContinuousCameraMonitor> const monitor(
        ICameraFactory::getUniqueInstance().createContinuousCameraMonitor());
    if (!monitor->startMonitoring(reporter)) {
        std::cerr << "watch-cameras: udev cannot be reached\n";
        return 1;
    }
    std::cout << "Plug a camera in or out; Enter ends." << std::endl;
    std::string line;
    std::getline(std::cin, line);
    // The client must outlive the monitoring, and the monitoring ends before the monitor does.
    monitor->stopMonitoring();
    return 0;
}
