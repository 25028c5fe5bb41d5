#pragma once
// A report laid out in pages: texts, lines and boxes placed in millimetres on each page,
// with every field already filled in, "n de m" included. A text is one line: long texts
// were broken into lines when the pages were laid out. One routine paints it on any
// surface (the preview, a printer, a PDF file), so all of them show the same pages.

#include "layout.h"

#include <QList>
#include <QRectF>
#include <QString>

namespace rtx::output {

struct Item {
    enum class Kind : quint8 { Text, Line, Box };
    Kind kind = Kind::Text;
    Align align = Align::Left;
    bool bold = false;
    bool italic = false;
    bool dashed = false; // Line
    quint8 grey = 255;   // Box: ground from 0 (black) to 254; 255 is none
    quint8 ink = 0;      // Text and lines: from 0 (black) to 255 (white)
    float size = 9;      // Text: points
    float pen = 0;       // Line and Box frame: thickness in points; 0 is no frame
    QRectF rect;         // millimetres; a Line runs from the top left to the bottom right
    QString text;
};

struct Page {
    QList<Item> items;
};

struct Document {
    QString title;
    QString font;
    double width = 210, height = 297; // millimetres
    QList<Page> pages;
    int rows = 0; // rows of data printed
};

} // namespace rtx::output
