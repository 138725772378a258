// The mode word: its first value, and the merge of the set operation.

#include "frame/mode.h"

#include "frame/environment_option.h"

namespace qor::frame {

uint32_t first_mode(ThreadState& state) {
  const OptionBits option = read_environment_option();
  uint32_t word = QOR_MODE_DEFAULT;
  if (!(option == no_option)) {
    word = option.low;
    if ((word & QOR_MODE_ACCURACY) == 0) word |= QOR_MODE_HA;
    if ((word & QOR_MODE_ERRORS) == 0) word |= QOR_MODE_ERRORS_DEFAULT;
  }
  state.mode = word;
  return word;
}

uint32_t merge_mode(ThreadState& state, uint32_t fields) {
  constexpr uint32_t kFields[] = {QOR_MODE_ACCURACY, QOR_MODE_ERRORS, QOR_MODE_DENORMALS,
                                  QOR_MODE_TRAPS, QOR_MODE_RESERVED};
  const uint32_t old = mode_of(state);
  uint32_t word = old;
  for (uint32_t field : kFields) {
    if ((fields & field) != 0) word = (word & ~field) | (fields & field);
  }
  state.mode = word;
  return old;
}

}  // namespace qor::frame
