// SPDX-License-Identifier: MIT
// How a page looks: letters, colours, tables, code and pictures. Lengths are in points of 1/72
// inch.
#pragma once

#include <QColor>
#include <QString>

class QTextDocument;

namespace qk {

inline constexpr double kBaseSize = 10;
inline constexpr const char* kText = "DejaVu Sans";
inline const QColor kInk(32, 32, 40), kAccent(0, 70, 130), kRule(190, 198, 206),
    kShade(240, 243, 246), kPale(110, 116, 124);

// Markdown as the toolkit reads it whole: it loses the lines of code that is only indented, which
// is given fences.
QString FenceIndentedCode(const QString& markdown);

// Gives the heading of the first rank.
QString StylePage(QTextDocument& document);

// A picture as wide as the text allows, and never larger than it is on the screen at 125 pixels an
// inch. What the page calls it stands beneath.
void FitPictures(QTextDocument& document, double width);

}  // namespace qk
