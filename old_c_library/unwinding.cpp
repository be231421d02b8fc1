// Finds exception tables for the statically linked unwinder. The C library's function for that exists only
// from 2.35 on; this replacement lets the plug-in load with older ones.

#include "old_c_library/unwinding.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <stdint.h>
#include <unwind.h>

void readyUnwinder() {
  _Unwind_Backtrace([](_Unwind_Context*, void*) { return _URC_END_OF_STACK; }, nullptr);
}

#ifdef DLFO_STRUCT_HAS_EH_DBASE

namespace {

struct Search {
  uintptr_t address;
  dl_find_object* found;
};

// Returns 1, which ends the iteration, for the object that contains the address.
int lookInto(dl_phdr_info* object, size_t, void* data) {
  const auto* search = static_cast<const Search*>(data);
  dl_find_object found = {};
  bool isInside = false;
  for (const ElfW(Phdr)* part = object->dlpi_phdr; part != object->dlpi_phdr + object->dlpi_phnum; ++part) {
    const uintptr_t start = object->dlpi_addr + part->p_vaddr;
    void* const place = reinterpret_cast<void*>(start);
    if (part->p_type == PT_LOAD && search->address - start < part->p_memsz) {
      isInside = true;
      found.dlfo_map_start = place;
      found.dlfo_map_end = reinterpret_cast<void*>(start + part->p_memsz);
    }
    if (part->p_type == PT_GNU_EH_FRAME) found.dlfo_eh_frame = place;
    if (part->p_type == PT_DYNAMIC) {
      const ElfW(Dyn)* entry = static_cast<const ElfW(Dyn)*>(place);
      while (entry->d_tag != DT_NULL && entry->d_tag != DT_PLTGOT) ++entry;
      if (entry->d_tag == DT_PLTGOT) found.dlfo_eh_dbase = reinterpret_cast<void*>(entry->d_un.d_ptr);
    }
  }
  if (!isInside) return 0;
  *search->found = found;
  return 1;
}

}  // namespace

int _dl_find_object(void* address, dl_find_object* result) noexcept {
  Search search = {reinterpret_cast<uintptr_t>(address), result};
  const bool isFound = dl_iterate_phdr(lookInto, &search) == 1 && result->dlfo_eh_frame;
  return isFound ? 0 : -1;
}

#endif
