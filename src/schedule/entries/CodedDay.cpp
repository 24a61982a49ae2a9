#include "schedule/entries/CodedDay.h"

namespace kestrune::schedule {

base::DateValue CodedDay(int dayOfJanuary) {
  return base::DateValue::FromCivil(1967, 1, dayOfJanuary);
}

}  // namespace kestrune::schedule
