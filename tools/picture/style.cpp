#include "tools/picture/style.h"

namespace tool {

// The fillings differ in hue and in brightness, so that readers with any kind of colour vision tell
// them apart, and most of them in a pattern too; black text on each is readable.
std::string_view picture_style() {
  return R"(
    :root {
      color-scheme: light dark;
      --ground: #ffffff; --ink: #1b1f24; --faint: #57606a; --rule: #d0d7de;
      --payload: #6fb7e9; --padding-right: #e69f00; --padding-below: #f0e442;
      --flags: #1f9a7f; --extra: #b06ab3; --gap: #b4b9bf; --shared: #e5673b;
      --slices: #b9dcf5; --warning: #b3320b;
    }
    @media (prefers-color-scheme: dark) {
      :root {
        --ground: #15181c; --ink: #e8eaed; --faint: #a3acb6; --rule: #3a414a;
        --warning: #ff9d7a;
      }
    }
    .ground { fill: var(--ground); }
    .payload { fill: var(--payload); }
    .flags { fill: var(--flags); }
    .extra { fill: var(--extra); }
    .base-padding-right { fill: var(--padding-right); }
    .base-padding-below { fill: var(--padding-below); }
    .base-gap { fill: var(--gap); }
    .base-shared { fill: var(--shared); }
    .base-slices { fill: var(--slices); }
    .padding-right { fill: url(#fill-padding-right); }
    .padding-below { fill: url(#fill-padding-below); }
    .gap { fill: url(#fill-gap); }
    .shared { fill: url(#fill-shared); }
    .slices { fill: url(#fill-slices); }
    .hatch { stroke: #000; stroke-opacity: .38; stroke-width: 1; fill: none; }
    .edge { stroke: #000; stroke-opacity: .45; stroke-width: .75; }
    .grid { fill: none; stroke: #000; stroke-opacity: .5; stroke-width: .75; }
    .frame { fill: none; stroke: var(--ink); stroke-width: 1; }
    .behind { fill-opacity: .5; stroke: var(--ink); stroke-width: 1; }
    .lens { fill: var(--faint); fill-opacity: .16; }
    .tick-line { stroke: var(--faint); stroke-width: 1; }
    text {
      fill: var(--ink);
      font-family: system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", "DejaVu Sans",
        Arial, sans-serif;
    }
    .title { font-size: 18px; font-weight: 600; }
    .heading { font-size: 14px; font-weight: 600; }
    .name { font-size: 11px; font-weight: 600; }
    .plain { font-size: 12px; }
    .caption { font-size: 11px; fill: var(--faint); }
    .label { font-size: 11px; fill: #000; pointer-events: none; }
    .tick { font-size: 10px; fill: var(--faint); }
    .warning { font-size: 12px; fill: var(--warning); }
    .told { cursor: help; }
)";
}

}  // namespace tool
