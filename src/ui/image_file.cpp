#include "ui/image_file.h"

#include <QFileInfo>
#include <QImageWriter>

namespace qk {

std::string WriteImageFile(const QImage& image, const std::string& path) {
  const QString name = QString::fromStdString(path);
  const QByteArray format = QFileInfo(name).suffix().toLower().toLatin1();
  if (format != "bmp" && format != "png" && format != "tif" && format != "tiff" &&
      format != "jpg" && format != "jpeg")
    return "no image format for \"" + path + "\": bmp, png, tif or jpg";
  QImageWriter writer(name, format);
  if (format.startsWith("jp")) writer.setQuality(85);
  if (writer.write(image)) return {};
  return "\"" + path + "\": " + writer.errorString().toStdString();
}

}  // namespace qk
