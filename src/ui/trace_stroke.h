// SPDX-License-Identifier: MIT
// Draws traces directly into the pixels of an image. The toolkit's stroker takes seconds for a
// noisy trace with a pen of two pixels; here the cost grows only with the length of the trace.
#pragma once

#include <span>

#include <QImage>
#include <QPointF>

namespace qk {

// Draws a polyline through the points, in image pixels (a pixel's centre is at .5), with a pen of
// whole pixels. Edges are antialiased, except for a trace longer than kSmoothedRows in rows and
// columns, whose lines overlap anyway. Every line ends in a square around its point, so that joints
// have no gaps, and the centre of a line has exactly the given colour. The image has 32 bits per
// pixel without transparency; parts outside it are clipped.
void StrokeTrace(QImage& image, std::span<const QPointF> points, int width, QRgb colour);

// The area of a closed polygon (nonzero winding) in a colour through which opacity (0 to 1) lets
// the rest show, a column of pixels at a time: its upper and lower edges are smoothed. The toolkit
// hands such a fill to other threads piece by piece, which takes longer than the fill.
void FillArea(QImage& image, std::span<const QPointF> corners, QRgb colour, double opacity);

inline constexpr int kSmoothedRows = 400'000;

}  // namespace qk
