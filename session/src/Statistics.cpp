// SPDX-License-Identifier: MIT
#include "session/Statistics.h"

#include <ostream>
#include <sstream>
#include <utility>

namespace ImageAcquisition::Session
{

std::string Statistics::text() const
{
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line.setf(std::ios::fixed);
    line.precision(2);
    line << received << " frames, " << rate << " a second";
    line.precision(1);
    line << ", jitter " << jitter.count() << " ms, age " << age.count() << " ms, oldest "
         << oldest.count() << " ms";
    std::pair<unsigned long long, char const*> const counts[] = {
        {lost, "lost"},      {damaged, "damaged"},        {shortened, "short"},
        {late, "late"},      {thrownAway, "thrown away"}, {timeOuts, "time-outs"},
        {returns, "returns"}};
    for (auto const& [count, name] : counts) {
        if (count != 0) {
            line << ", " << count << " " << name;
        }
    }
    return line.str() + (reason.empty() ? "" : "; " + reason);
}

std::ostream& operator<<(std::ostream& out, Statistics const& of)
{
    return out << of.text();
}

} // namespace ImageAcquisition::Session
