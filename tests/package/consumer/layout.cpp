#include "layout.h"

std::array<Layout, layouts.size()> layouts_of_the_library() { return layouts; }
