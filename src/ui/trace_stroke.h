// SPDX-License-Identifier: MIT
// Traces stroked straight onto the pixels of an image. The toolkit's stroker takes seconds for a
// noisy trace and a pen of two pixels; here the cost grows with the length of the trace alone.
#pragma once

#include <span>

#include <QImage>
#include <QPointF>

namespace qk {

// A polyline through the points, in pixels of the image (a pixel's middle lies at .5), with a pen
// of whole pixels. Edges are smoothed; a trace longer than kSmoothedRows in rows and columns, whose
// lines lie on top of each other anyway, is not. Every line ends in a square about its point, so
// that joints have no gaps, and the middle of a line has exactly the colour. The image is of 32
// bits a pixel without transparency; what lies outside it is left out.
void StrokeTrace(QImage& image, std::span<const QPointF> points, int width, QRgb colour);

// The area of a closed polygon (nonzero winding) in a colour through which opacity (0 to 1) lets
// the rest show, a column of pixels at a time: its upper and lower edges are smoothed. The toolkit
// hands such a fill to other threads piece by piece, which takes longer than the fill.
void FillArea(QImage& image, std::span<const QPointF> corners, QRgb colour, double opacity);

inline constexpr int kSmoothedRows = 400'000;

}  // namespace qk
