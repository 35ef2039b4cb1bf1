// A picture that comes into the editor by another road than the Open dialog.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QMimeData;

namespace pictorel {

struct PictureArrival {
    QString fileName; // empty for a picture that lies in no file
    QStringList left; // the other files that came with it: one picture is open at a time
    QByteArray bytes; // what its file would hold ...
    QString name;     // ... and what it is called
};

// Of several files the first, the rest left. `files` is not empty.
PictureArrival FirstOf(const QStringList& files);

// Whether a drop or the clipboard holds a file of this machine, or a picture in a format that is read.
bool HoldsPicture(const QMimeData& data);

// That picture: the first file, or the bytes of one, undecoded, called as in the address that came along,
// `name` where none did.
PictureArrival ArrivalIn(const QMimeData& data, const QString& name);

// Why there is nothing to open under this name, in words for the person; empty for a file that can be read,
// be it a picture or not.
QString WhyUnreadable(const QString& fileName);

// Which files were left, in words for the person; empty where none were.
QString WhatWasLeft(const PictureArrival& arrival);

} // namespace pictorel
