// Load and unload notices of the ELF loader, passed on in the shape of a library entry.
//
// A constructor cannot refuse the load: when the first block cannot be had, the message is printed
// and the first use tries again.

#include "frame/thread_state.h"
#include "services/services.h"

namespace qor::frame {
namespace {

[[gnu::constructor]] void on_load() { library_entry(nullptr, Notice::process_attach, nullptr); }

// At the end of the process other threads may be inside a kernel: a non-null argument frees
// nothing.
[[gnu::destructor]] void on_unload() {
  static char process_ends;
  library_entry(nullptr, Notice::process_detach,
                qor_serv_process_ending() != 0 ? &process_ends : nullptr);
}

}  // namespace
}  // namespace qor::frame
