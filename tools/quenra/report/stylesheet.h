// The style sheet of a report: for a screen in light and dark, and for paper.
#ifndef TOOLS_QUENRA_REPORT_STYLESHEET_H
#define TOOLS_QUENRA_REPORT_STYLESHEET_H

#include "tools/quenra/report/thtml.h"

namespace nCommandLine {

inline constexpr tMarkup kStyleSheet = R"(
:root { color-scheme: light dark; --back: #eef1f5; --card: #fff; --text: #17212b; --faint: #4d5967;
  --rule: #d3dae2; --accent: #0b5394; --soft: #e3edf8; --good: #0d6236; --good-soft: #e2f4e9;
  --alert: #9c1c13; --alert-soft: #fdebe9; --metal: #8d6d1f; }
@media screen and (prefers-color-scheme: dark) { :root { --back: #0e1318; --card: #182029;
  --text: #e8eef4; --faint: #a9b7c5; --rule: #303c48; --accent: #86bdf5; --soft: #1d3044;
  --good: #7fd6a6; --good-soft: #15301f; --alert: #ff9e94; --alert-soft: #3a1b19; --metal: #c9a64c; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--back); color: var(--text);
  font: 16px/1.5 system-ui, "Segoe UI", "Noto Sans", "DejaVu Sans", sans-serif; overflow-wrap: anywhere; }
.skip { position: absolute; left: -100rem; }
.skip:focus { left: 1rem; top: 1rem; padding: .5rem 1rem; background: var(--card); color: var(--accent); }
:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; }
header, main, footer { max-width: 76rem; margin: 0 auto; padding: 0 1.25rem; }
header { padding-top: 2rem; padding-bottom: 1rem; display: flex; flex-wrap: wrap; gap: .5rem 2rem;
  align-items: end; justify-content: space-between; }
header > div { min-width: 0; }
h1 { margin: 0; font-size: 2rem; line-height: 1.2; }
h2 { margin: 0 0 .75rem; font-size: 1.15rem; line-height: 1.3; }
h3 { margin: 1.25rem 0 .5rem; font-size: 1rem; }
p { margin: 0 0 .5rem; }
section > :last-child { margin-bottom: 0; }
.faint { color: var(--faint); }
header p { margin: .15rem 0 0; }
.verdict { padding: .35rem .9rem; border: 1px solid; border-radius: 2rem; font-weight: 600; white-space: nowrap; }
.good { color: var(--good); background: var(--good-soft); }
.bad { color: var(--alert); background: var(--alert-soft); }
.column { display: flex; flex-direction: column; gap: 1rem; }
.pair { display: grid; grid-template-columns: repeat(2, minmax(0, 1fr)); gap: 1rem; align-items: start; }
section { min-width: 0; padding: 1.25rem; background: var(--card); border: 1px solid var(--rule);
  border-radius: .75rem; }
section[aria-labelledby="warnings"] { border-left: .4rem solid var(--alert); }
main ul { margin: 0; padding: 0; list-style: none; }
main li + li { margin-top: .75rem; padding-top: .75rem; border-top: 1px solid var(--rule); }
main li strong { display: block; color: var(--alert); }
main li strong::first-letter { text-transform: uppercase; }
main li p { margin: 0; }
figure { margin: 0; }
figcaption { margin-top: .5rem; color: var(--faint); font-size: .875rem; }
svg { display: block; width: 100%; max-width: 34rem; height: auto; margin: 0 auto;
  font: 11px system-ui, "Segoe UI", "Noto Sans", "DejaVu Sans", sans-serif; }
svg text { fill: var(--text); }
svg .faint { fill: var(--faint); }
svg .strong { font-weight: 600; }
svg .alert { fill: var(--alert); }
svg .frame { fill: none; stroke: var(--rule); stroke-width: 2; }
svg .module, svg .slot { fill: var(--soft); stroke: var(--accent); stroke-width: 1.5; }
svg .handle { fill: var(--accent); }
svg .place { fill: none; stroke: var(--faint); stroke-dasharray: 3 3; }
svg .line { stroke: var(--faint); stroke-width: 1.5; }
svg .held { stroke: var(--alert); stroke-width: 4; }
svg .contacts { stroke: var(--metal); stroke-width: 4; stroke-dasharray: 4 2; }
.scroll { overflow-x: auto; }
.scroll td, .scroll th { white-space: nowrap; }
.scroll .wraps { white-space: normal; }
.scroll .prose { min-width: 16rem; white-space: normal; }
table { width: 100%; border-collapse: collapse; font-size: .9375rem; overflow-wrap: normal; }
.fields { max-width: 40rem; overflow-wrap: anywhere; table-layout: fixed; }
.fields th { width: 44%; }
caption { padding-bottom: .25rem; text-align: left; font-weight: 600; }
.unseen { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
th, td { padding: .3rem .75rem .3rem 0; border-top: 1px solid var(--rule); text-align: left;
  vertical-align: top; }
thead th { border-top: 0; }
th { color: var(--faint); font-weight: 600; }
.held { color: var(--alert); font-weight: 600; }
table + table, .scroll + table, table + .scroll, .scroll + .scroll { margin-top: 1rem; }
footer { padding-top: 1rem; padding-bottom: 2rem; color: var(--faint); font-size: .875rem; }
@media screen and (max-width: 60rem) { .pair { grid-template-columns: minmax(0, 1fr); } }
@page { size: A4; margin: 12mm; }
@media print {
  :root { --back: #fff; }
  body { padding: 0 .3mm; font-size: 9pt; line-height: 1.35; print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  header, main, footer { max-width: none; padding: 0; }
  header { padding-bottom: 3mm; }
  h1 { font-size: 17pt; }
  h2 { margin-bottom: 1.5mm; font-size: 11pt; }
  h3 { margin: 2mm 0 1mm; font-size: 9pt; }
  .pair, .column { gap: 4mm; }
  section { padding: 3mm; border-radius: 2mm; break-inside: avoid; }
  .skip { display: none; }
  .scroll { overflow: visible; }
  .scroll td, .scroll .prose { min-width: 0; white-space: normal; overflow-wrap: anywhere; }
  svg { max-height: 88mm; }
  table { font-size: 8pt; }
  th, td { padding: .5mm 2mm .5mm 0; }
  figcaption { font-size: 7.5pt; }
  footer { padding-top: 3mm; padding-bottom: 0; font-size: 7.5pt; }
}
)";

}  // namespace nCommandLine

#endif
