// A picture that comes by another road than the Open dialog, see PictureArrival.h.
#include "commands/PictureArrival.h"

#include <QFileInfo>
#include <QMimeData>
#include <QObject>
#include <QUrl>

#include <algorithm>
#include <array>

namespace pictorel {
namespace {

// Those that keep every pixel first. Other formats are not asked for: they would be decoded by whoever hands
// them over, not by our decoder.
constexpr std::array kPictureTypes{"image/png",  "image/tiff", "image/bmp",  "image/x-bmp",  "image/x-MS-bmp",
                                   "image/webp", "image/jxl",  "image/avif", "image/heif",   "image/heic",
                                   "image/jp2",  "image/jpeg", "image/gif",  "image/x-targa"};

// The files of this machine.
QStringList FilesIn(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

bool HoldsPicture(const QMimeData& data) {
    const QStringList formats = data.formats();
    return !FilesIn(data).isEmpty() ||
           std::any_of(kPictureTypes.begin(), kPictureTypes.end(),
                       [&](const char* type) { return formats.contains(QLatin1String(type)); });
}

PictureArrival ArrivalIn(const QMimeData& data, const QString& name) {
    if (const QStringList files = FilesIn(data); !files.isEmpty()) {
        return FirstOf(files);
    }
    PictureArrival arrival;
    const auto addresses = data.urls();
    const QString addressed = addresses.isEmpty() ? QString() : addresses.first().fileName();
    arrival.name = addressed.isEmpty() ? name : addressed;
    const QStringList formats = data.formats();
    for (const char* const type : kPictureTypes) {
        if (arrival.bytes.isEmpty() && formats.contains(QLatin1String(type))) {
            arrival.bytes = data.data(QLatin1String(type));
        }
    }
    return arrival;
}

PictureArrival FirstOf(const QStringList& files) {
    return {files.first(), files.mid(1), {}, {}};
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
