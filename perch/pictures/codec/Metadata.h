// What a file says of its picture, in the image library's terms.
#pragma once

#include <OpenImageIO/paramlist.h>

#include "FileFormat.h"

namespace pictures {

class Metadata {
public:
    FileFormat format = FileFormat::Png;
    OIIO::ParamValueList attributes;
};

}  // namespace pictures
