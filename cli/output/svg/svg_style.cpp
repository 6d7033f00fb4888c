#include "cli/output/svg/svg_style.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kCommon =
    "text{font-family:system-ui,'Segoe UI','Helvetica Neue','DejaVu Sans',sans-serif;font-size:12px}"
    ".title{font-size:22px;font-weight:600}.small{font-size:11px}.key{font-size:10.5px}.name{font-size:13px;"
    "font-weight:600}.label{paint-order:stroke;stroke-width:3.5px;stroke-linejoin:round}"
    "path,line{fill:none;stroke-linecap:round;stroke-linejoin:round}.grid{stroke-width:1}.axis{stroke-width:1.6}"
    ".shadow{stroke-width:3}.drop{stroke-width:1;stroke-dasharray:1 4}.diamond{stroke-width:1.3}";

constexpr const char* kLight =
    ".bg{fill:#f5f6f8}.ink{fill:#1c2430}.soft{fill:#5d6878}.warn{fill:#9a4a00}.grid{stroke:#dde1e7}.axis{stroke:#"
    "bcc4cf}"
    ".shadow{stroke:#28354a;stroke-opacity:.10}.drop{stroke:#8a94a3}.case{stroke:#3a4656;stroke-opacity:.42}"
    ".diamond{fill:#fff;stroke:#1c2430}.label{stroke:#f5f6f8}.frame{stroke:#cfd5dd}";

constexpr const char* kDark =
    ".bg{fill:#14171c}.ink{fill:#eef1f5}.soft{fill:#98a3b3}.warn{fill:#ffb066}.grid{stroke:#262c35}.axis{stroke:#"
    "434c59}"
    ".shadow{stroke:#000;stroke-opacity:.45}.drop{stroke:#596474}.case{stroke:#000;stroke-opacity:.55}"
    ".diamond{fill:#fff;stroke:#14171c}.label{stroke:#14171c}.frame{stroke:#3a424e}";

}  // namespace

std::string style_sheet(const std::string& theme) {
  std::string sheet = kCommon;
  sheet += theme == "dark" ? kDark : kLight;
  if (theme == "auto") sheet += std::string("@media (prefers-color-scheme:dark){") + kDark + "}";
  return sheet;
}

}  // namespace vantorelix::cli
