#pragma once

#include "pictures/cameradata.h"

class QIODevice;

/// What a JPEG says before its pixels.
struct JpegHead
{
    CameraData cameraData;
    int components = 0;     ///< 1: grey
    bool heldWhole = false; ///< the decoder needs memory for all of it, however small it is read
};

/// Reads from the start of \a device. What is damaged counts as missing.
JpegHead readJpegHead(QIODevice *device);
