#include <windows.h>
//
#include <fcntl.h>
#include <io.h>

#include <cstdlib>
#include <initializer_list>

#include "cli/terminal/streams.h"

namespace vantorelix::cli {

namespace {

UINT code_page_before = 0;

void restore_code_page() { SetConsoleOutputCP(code_page_before); }

void obey_codes(DWORD stream) {
  const HANDLE handle = GetStdHandle(stream);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode)) SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

void prepare_streams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  obey_codes(STD_OUTPUT_HANDLE);
  obey_codes(STD_ERROR_HANDLE);
  // The code page belongs to the console, which others write to afterwards. Without a console there is none.
  code_page_before = GetConsoleOutputCP();
  if (code_page_before == 0 || code_page_before == CP_UTF8) return;
  SetConsoleOutputCP(CP_UTF8);
  std::atexit(restore_code_page);
}

bool is_terminal(std::FILE* stream) {
  // The null device, too, is a "character device", and is not a terminal.
  DWORD mode = 0;
  return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

}  // namespace vantorelix::cli
