#include "cli/output/svg/svg_style.h"

namespace vantorelix::cli {

namespace {

constexpr const char* kCommon =
    "text{font-family:system-ui,'Segoe UI','Helvetica Neue','DejaVu Sans',sans-serif;font-size:12px}"
    ".title{font-size:22px;font-weight:600}.small{font-size:11px}.key{font-size:10.5px}.name{font-size:13px;"
    "font-weight:600}.label{paint-order:stroke;stroke-width:3.5px;stroke-linejoin:round}"
    "path,line{fill:none;stroke-linecap:round;stroke-linejoin:round}.grid{stroke-width:1}.axis{stroke-width:1.6}"
    ".shadow{stroke-width:3}.drop{stroke-width:1;stroke-dasharray:1 4}.leader{stroke-width:.8}.skin "
    "circle{fill:none;stroke-width:2}.diamond{stroke-width:1.3}"
    ".number{font-size:10px;font-weight:600}.faint{opacity:.25}.bone{stroke-width:1.6}.bone.under{stroke-width:3.6}"
    ".ring{stroke-width:1}.ring.lit{stroke-width:2.2}.hold{fill:none;stroke-width:1.6}.skin path{stroke-width:1.8}"
    ".arrow{stroke-width:1.2;paint-order:stroke}.soft-line{stroke-width:2.5;opacity:.35}.second{stroke-width:1.25}"
    "circle.second{stroke-width:1.5}"
    ".second.bones{opacity:.5}.second.there{stroke-dasharray:4 3}.apart{stroke-width:1.4}";

constexpr const char* kLight =
    ".bg{fill:#f5f6f8}.ink{fill:#1c2430}.soft{fill:#5d6878}.warn{fill:#9a4a00}.grid{stroke:#dde1e7}.axis{stroke:#"
    "bcc4cf}"
    ".shadow{stroke:#28354a;stroke-opacity:.10}.drop{stroke:#8a94a3}.case{stroke:#3a4656;stroke-opacity:.42}"
    ".diamond{fill:#fff;stroke:#1c2430}.label{stroke:#f5f6f8}.frame{stroke:#cfd5dd}"
    ".bone{stroke:#4a5666}.bone.under{stroke:#f5f6f8;stroke-opacity:.8}.ring{stroke:#4a5666}.ring.lit{stroke:#1c2430}"
    ".hold{stroke:#1c2430}.before *{stroke:#a86400}.after "
    "*{stroke:#00747a}.leader{stroke:#5d6878}.arrow{fill:#1c2430;stroke:#f5f6f8}"
    ".soft-line,.apart{stroke:#1c2430}.second{stroke:#5d6878}circle.second{fill:#f5f6f8}";

constexpr const char* kDark =
    ".bg{fill:#14171c}.ink{fill:#eef1f5}.soft{fill:#98a3b3}.warn{fill:#ffb066}.grid{stroke:#262c35}.axis{stroke:#"
    "434c59}"
    ".shadow{stroke:#000;stroke-opacity:.45}.drop{stroke:#596474}.case{stroke:#000;stroke-opacity:.55}"
    ".diamond{fill:#fff;stroke:#14171c}.label{stroke:#14171c}.frame{stroke:#3a424e}"
    ".bone{stroke:#b9c3d0}.bone.under{stroke:#14171c;stroke-opacity:.8}.ring{stroke:#b9c3d0}.ring.lit{stroke:#eef1f5}"
    ".hold{stroke:#eef1f5}.before *{stroke:#ffbf4d}.after "
    "*{stroke:#3cc3c6}.leader{stroke:#98a3b3}.arrow{fill:#eef1f5;stroke:#14171c}"
    ".soft-line,.apart{stroke:#eef1f5}.second{stroke:#98a3b3}circle.second{fill:#14171c}";

}  // namespace

std::string style_sheet(const std::string& theme) {
  std::string sheet = kCommon;
  sheet += theme == "dark" ? kDark : kLight;
  if (theme == "auto") sheet += std::string("@media (prefers-color-scheme:dark){") + kDark + "}";
  return sheet;
}

}  // namespace vantorelix::cli
