#include "apps/kestrune/HeadlessFace.h"

#include <iostream>

namespace kestrune::apps {

HeadlessFace::HeadlessFace(bool agreementAccepted) : dialogs_(std::cerr, agreementAccepted) {}

}  // namespace kestrune::apps
