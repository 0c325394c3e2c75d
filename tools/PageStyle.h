#pragma once

namespace veral3::tools {

// The style sheet of GradePage. Dark text on light grounds only, at a contrast of 4.5:1 and more;
// what a colour says, a number or a line's kind says too.
inline constexpr const char* kPageStyle = R"(
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0; background: #f6f7f9; color: #1c2733; overflow-wrap: anywhere;
  font: 16px/1.45 system-ui, "Noto Sans", "Noto Sans CJK TC", "Noto Sans CJK JP", sans-serif; }
main { max-width: 1080px; margin: 0 auto; padding: 16px; }
article { background: #fff; border: 1px solid #d5dbe2; border-radius: 10px; padding: 20px;
  margin: 0 0 24px; }
h1 { font-size: 1.15rem; margin: 4px 0 16px; }
h2 { font-size: 1.5rem; line-height: 1.25; margin: 0 0 6px; }
h3 { font-size: 1.1rem; margin: 28px 0 8px; }
p { margin: 6px 0; }
.about { color: #46535f; }
.error { background: #fdecea; border-left: 5px solid #a3231b; padding: 10px 12px; }
.lowered { background: #fff4d6; border-left: 5px solid #8a4b00; padding: 10px 12px;
  margin: 14px 0 0; }
.lowered p:first-child { font-weight: 600; }
ul, ol { list-style: none; margin: 0; padding: 0; }
.scores { display: grid; grid-template-columns: repeat(auto-fit, minmax(130px, 1fr)); gap: 10px;
  margin: 14px 0 0; }
.scores li { border: 1px solid #d5dbe2; border-radius: 8px; padding: 8px 12px; }
.scores .number { display: block; font-size: 1.8rem; font-weight: 600; line-height: 1.2; }
.scores .bar { display: block; height: 8px; border-radius: 4px; background: #e6eaee;
  overflow: hidden; margin-top: 4px; }
.scores .bar span { display: block; height: 100%; background: #2f5d8c; }
.legend { display: flex; flex-wrap: wrap; gap: 6px 14px; margin: 8px 0 12px; align-items: center; }
.legend li { display: flex; gap: 6px; align-items: center; }
.good { background: #cfeeda; border: 2px solid #2c7a4b; }
.fair { background: #f2f1b8; border: 2px dashed #72690a; }
.weak { background: #ffdcae; border: 2px dotted #8a4b00; }
.poor { background: #ffc9c2; border: 4px double #a3231b; }
.none { background: #eceff2; border: 2px solid #7b8792; }
.chip { display: inline-block; min-width: 2.4em; border-radius: 6px; padding: 1px 7px;
  text-align: center; }
.words { display: flex; flex-wrap: wrap; gap: 12px; }
.word { flex: 1 1 240px; max-width: 100%; min-width: 0; border: 1px solid #d5dbe2;
  border-radius: 8px; padding: 10px 12px; }
.word h4 { display: flex; flex-wrap: wrap; justify-content: space-between; gap: 4px 10px;
  font-size: 1.1rem; margin: 0 0 6px; }
.word h4 > span { min-width: 0; }
.word .count { color: #46535f; font-weight: 400; }
.sounds { display: flex; flex-wrap: wrap; gap: 5px; margin: 0 0 4px; }
.sounds .chip { line-height: 1.25; }
.symbol { display: block; font: 600 1.15rem/1.3 ui-monospace, "DejaVu Sans Mono", monospace; }
.heard { display: block; font-size: .85rem; }
.syllable { border-top: 1px solid #e2e6ea; padding: 6px 0 2px; }
.syllable p { font-size: .95rem; margin: 2px 0; }
.advice { font-weight: 600; }
svg { display: block; width: 100%; max-width: 100%; }
.wave { height: 64px; background: #f3f5f7; }
.word .wave { height: 36px; margin-top: 3px; }
.curve { height: 130px; background: #f3f5f7; }
.bars { height: 22px; }
.wave.learner path, .bars .learner { fill: #1f5c99; }
.wave.tutor path, .bars .tutor { fill: #b8651b; }
.edge { stroke: #8894a0; stroke-width: 1; vector-effect: non-scaling-stroke; }
polyline { fill: none; vector-effect: non-scaling-stroke; stroke-linejoin: round; }
polyline.learner { stroke: #1f5c99; stroke-width: 3; }
polyline.tutor { stroke: #b8651b; stroke-width: 2.5; stroke-dasharray: 7 4; }
.key { display: inline-block; width: 34px; height: 0; vertical-align: middle; }
.key.learner { border-top: 4px solid #1f5c99; }
.key.tutor { border-top: 4px dashed #b8651b; }
figure { margin: 12px 0; }
figcaption { margin: 0 0 4px; }
.ends { display: flex; justify-content: space-between; color: #46535f; font-size: .9rem; }
.told { list-style: disc; padding-left: 1.3em; }
table { border-collapse: collapse; width: 100%; }
caption { text-align: left; padding: 4px 0; }
th, td { text-align: left; border-top: 1px solid #e2e6ea; padding: 4px 8px 4px 0;
  vertical-align: top; }
@media (max-width: 520px) {
  main { padding: 8px; }
  article { padding: 12px; }
  h2 { font-size: 1.25rem; }
}
@media print { body { background: #fff; } article { border: 0; } .word { break-inside: avoid; } }
)";

}  // namespace veral3::tools
