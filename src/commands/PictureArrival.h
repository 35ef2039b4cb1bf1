// A picture that comes into the editor by another road than the Open dialog.
#pragma once

#include <QString>
#include <QStringList>

namespace pictorel {

struct PictureArrival {
    QString fileName;
    QStringList left; // the other files that came with it: one picture is open at a time
};

// Of several files the first, the rest left. `files` is not empty.
PictureArrival FirstOf(const QStringList& files);

// Why there is nothing to open under this name, in words for the person; empty for a file that can be read,
// be it a picture or not.
QString WhyUnreadable(const QString& fileName);

// Which files were left, in words for the person; empty where none were.
QString WhatWasLeft(const PictureArrival& arrival);

} // namespace pictorel
