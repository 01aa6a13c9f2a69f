// SPDX-License-Identifier: MIT
#include "serial/TtyFinder.h"

#include <QRegularExpression>
#include <QStringList>

namespace ImageAcquisition
{

QString ttyPattern(char const* busInfo)
{
    QString portPath;
    if (busInfo != nullptr) {
        portPath = QString(busInfo).split("-", Qt::KeepEmptyParts, Qt::CaseSensitive).last();
        portPath.replace(".", "\\.");
    }
    return "cdc_acm\\s(?<bus>[\\d\\.:]+-" + portPath + "):1\\.5:\\s(?<port>ttyACM\\d)";
}

TtyAnnouncement findTty(QString const& kernelLog, char const* busInfo)
{
    QRegularExpression const pattern(ttyPattern(busInfo),
                                     QRegularExpression::CaseInsensitiveOption);
    TtyAnnouncement last;
    auto matches = pattern.globalMatch(kernelLog);
    while (matches.hasNext()) {
        QRegularExpressionMatch const match = matches.next();
        last = {match.captured("bus"), match.captured("port")};
    }
    return last;
}

} // namespace ImageAcquisition
