// Compiled without unwind tables: for the C++ runtime the stack ends here, so an exception that
// nobody has caught below ends the program while its whole stack still stands. A debugger, which
// follows frame pointers or its own tables, sees on.
extern "C" __attribute__((visibility("default"))) void NSCallWithoutUnwinding(void (*call)(void*),
                                                                              void* context);

void NSCallWithoutUnwinding(void (*call)(void*), void* context) {
  call(context);
  // Not a tail call, which would leave no frame.
  __asm__ volatile("");
}
