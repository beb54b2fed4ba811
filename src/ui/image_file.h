// SPDX-License-Identifier: MIT
// Image files by their extension.
#pragma once

#include <string>

#include <QByteArray>
#include <QImage>

#include "core/result.h"

namespace qk {

// Writes the image as BMP (bmp, dib, rle), PNG, GIF, TIFF (tif, tiff) or JPEG (jpg, jpeg, jpe,
// jfif; quality 85), as the text behind the path's last point says, in any case. The file is
// written beside its place and renamed over it.
Result<Done> WriteImageFile(const QImage& image, const std::string& path);

// The image as a GIF: exactly with up to 256 colours, beyond that with the 256 commonest, every
// other colour being the nearest of them. Empty when it cannot be encoded.
QByteArray GifOf(const QImage& image);

}  // namespace qk
