// A picture that comes by another road than the Open dialog, see PictureArrival.h.
#include "commands/PictureArrival.h"

#include <QFileInfo>
#include <QObject>

namespace pictorel {

PictureArrival FirstOf(const QStringList& files) {
    return {files.first(), files.mid(1)};
}

QString WhyUnreadable(const QString& fileName) {
    const QFileInfo info(fileName);
    if (!info.exists()) {
        return QObject::tr("There is no file \"%1\".").arg(fileName);
    }
    if (info.isDir()) {
        return QObject::tr("\"%1\" is a folder, not a picture.").arg(fileName);
    }
    if (!info.isFile()) {
        return QObject::tr("\"%1\" is no file that holds a picture.").arg(fileName);
    }
    return info.isReadable() ? QString() : QObject::tr("You may not read the file \"%1\".").arg(fileName);
}

QString WhatWasLeft(const PictureArrival& arrival) {
    constexpr qsizetype kNamed = 5;
    if (arrival.left.isEmpty()) {
        return {};
    }
    QStringList names;
    for (const QString& fileName : arrival.left.mid(0, kNamed)) {
        names.append(QFileInfo(fileName).fileName());
    }
    if (arrival.left.size() > kNamed) {
        names.append(QObject::tr("and %1 more").arg(arrival.left.size() - kNamed));
    }
    return QObject::tr(
               "One picture is open at a time. Of the %1 files the first was taken, \"%2\"; the others "
               "were left:\n\n%3")
        .arg(arrival.left.size() + 1)
        .arg(QFileInfo(arrival.fileName).fileName(), names.join(u'\n'));
}

} // namespace pictorel
