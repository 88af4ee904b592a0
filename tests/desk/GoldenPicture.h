#pragma once

#include <QFont>
#include <QImage>
#include <QString>

#include <optional>

namespace KrTest {

/// How much a picture may differ: antialiasing and fonts are not quite the same everywhere.
struct PictureTolerance
{
    int channel = 32; ///< a pixel differs when red, green or blue is further off; 0 to 255
    double share = 0.0005; ///< of all pixels that may differ
};

/// The share of pixels that differ by more than @p channel; 1 when the sizes are not the same.
double differingShare(const QImage &actual, const QImage &expected, int channel);

/// A font of @p pixels for texts in golden pictures; nothing where it is missing or looks
/// different, and such pictures are not to be compared.
std::optional<QFont> pictureFont(int pixels);

/// Fails the test when golden/<name>.png shows something else; both and what differs are then in
/// the folder "pictures" beside the test. With KRHVC_RENEW_GOLDEN the golden picture is written
/// instead.
void compareWithGoldenPicture(
    const QImage &actual, const QString &name, const PictureTolerance &tolerance = {});

} // namespace KrTest
