// How the gallery looks and moves: style sheet and script of the page.
//
// Without the script every figure still shows both halves; the script lets the divider follow the pointer or the keys,
// and the field at the top narrows the page down.
#include "gallery_style.h"

namespace zlv {

const char* const kGalleryStyle = R"css(
:root { color-scheme: light dark; --page: #f5f4f1; --card: #ffffff; --ink: #1d1f23; --soft: #62666e;
  --line: #e0ddd6; --accent: #b4531a; --code: #f1efea; --shade: 0 1px 2px #0000000f, 0 6px 20px #0000000d; }
@media (prefers-color-scheme: dark) { :root { --page: #131417; --card: #1c1e22; --ink: #eceae6; --soft: #9da1a9;
  --line: #2e3137; --accent: #f0965a; --code: #25282d; --shade: none; } }
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 5rem; }
body { margin: 0; background: var(--page); color: var(--ink);
  font: 16px/1.5 system-ui, "Segoe UI", "Noto Sans", "Liberation Sans", sans-serif; }
a { color: inherit; }
.wide { max-width: 1560px; margin: 0 auto; padding: 0 clamp(1rem, 4vw, 3rem); }
.lead { padding-block: clamp(1.75rem, 4vw, 3rem) 1.5rem; display: grid; gap: 1.5rem clamp(1.5rem, 4vw, 3.5rem);
  align-items: center; grid-template-columns: minmax(0, 1fr) minmax(0, min(26rem, 34vw)); }
.original { background-repeat: no-repeat; background-size: 100% 100%; }
.lead .original { aspect-ratio: var(--w) / var(--h); width: min(100%, 20rem * var(--w) / var(--h)); justify-self: end;
  border-radius: 12px; }
.kicker { margin: 0 0 .25rem; color: var(--accent); font-weight: 600; letter-spacing: .08em; font-size: .8rem;
  text-transform: uppercase; }
h1 { margin: 0; font-size: clamp(1.9rem, 4.5vw, 3.1rem); line-height: 1.1; letter-spacing: -.025em;
  overflow-wrap: anywhere; }
.lead p:last-child { color: var(--soft); margin: .9rem 0 0; max-width: 46rem; }
.bar { position: sticky; top: 0; z-index: 5; background: color-mix(in srgb, var(--page) 88%, transparent);
  backdrop-filter: blur(10px); border-block: 1px solid var(--line); }
.bar .wide { display: flex; flex-wrap: wrap; gap: .5rem 1.25rem; align-items: center; padding-block: .6rem; }
.bar a { text-decoration: none; color: var(--soft); font-size: .92rem; white-space: nowrap; }
.bar a:hover { color: var(--accent); }
.bar input { margin-left: auto; flex: 0 1 16rem; min-width: 9rem; font: inherit; font-size: .92rem; color: inherit;
  background: var(--card); border: 1px solid var(--line); border-radius: 999px; padding: .35rem .95rem; }
section { padding-block: 2rem .5rem; }
h2 { font-size: 1.3rem; letter-spacing: -.01em; margin: 0 0 1.1rem; }
h2 small { color: var(--soft); font-weight: 400; margin-left: .5rem; }
.grid { display: grid; gap: 1.5rem; grid-template-columns: repeat(auto-fill, minmax(min(100%, 23rem), 1fr)); }
figure { margin: 0; background: var(--card); border: 1px solid var(--line); border-radius: 14px; overflow: hidden;
  box-shadow: var(--shade); display: flex; flex-direction: column; }
figure.large { grid-column: 1 / -1; }
.pair { --split: 50%; position: relative; aspect-ratio: var(--w) / var(--h); margin-inline: auto;
  width: min(100%, 32rem * var(--w) / var(--h)); overflow: hidden; touch-action: pan-y;
  background: repeating-conic-gradient(#d5d5d5 0% 25%, #f6f6f6 0% 50%) 0 0 / 18px 18px; }
figure.large .pair { width: min(100%, 85vh * var(--w) / var(--h)); }
.pair img, .pair .original { position: absolute; inset: 0; width: 100%; height: 100%; }
.pair img { clip-path: inset(0 0 0 var(--split)); }
.pair .original { clip-path: inset(0 calc(100% - var(--split)) 0 0); }
.pair::after { content: ""; position: absolute; inset: 0 auto 0 var(--split); width: 2px; margin-left: -1px;
  background: #fff; box-shadow: 0 0 4px #0009; pointer-events: none; }
.pair span { position: absolute; bottom: .6rem; padding: .1rem .55rem; border-radius: 999px; font-size: .74rem;
  color: #fff; background: #0009; pointer-events: none; }
.pair span.left { left: .6rem; }
.pair span.right { right: .6rem; }
.pair input { position: absolute; inset: 0; width: 100%; height: 100%; margin: 0; opacity: 0; cursor: ew-resize; }
.pair:focus-within { outline: 3px solid var(--accent); outline-offset: -3px; }
figcaption { padding: 1rem 1.1rem 1.15rem; display: flex; flex-direction: column; gap: .6rem; flex: 1; }
figcaption header { display: flex; align-items: baseline; gap: .75rem; }
h3 { margin: 0; font-size: 1.1rem; flex: 1; overflow-wrap: anywhere; }
.time { color: var(--soft); font-size: .85rem; font-variant-numeric: tabular-nums; white-space: nowrap; }
figcaption p { margin: 0; color: var(--soft); font-size: .93rem; }
dl { margin: 0; display: grid; grid-template-columns: max-content minmax(0, 1fr); gap: .15rem .9rem;
  font-size: .88rem; }
dt { color: var(--soft); }
dd { margin: 0; font-variant-numeric: tabular-nums; }
dd small { color: var(--soft); margin-left: .4rem; }
code { font: .82rem/1.5 ui-monospace, "Cascadia Mono", "DejaVu Sans Mono", "Liberation Mono", monospace;
  background: var(--code); border-radius: 8px; padding: .5rem .7rem; display: block; margin-top: auto;
  overflow-wrap: anywhere; user-select: all; }
button { font: inherit; font-size: .82rem; color: var(--soft); background: none; border: 1px solid var(--line);
  border-radius: 999px; padding: .1rem .65rem; cursor: pointer; }
button:hover { color: var(--accent); border-color: var(--accent); }
.failure { padding: 2.5rem 1.1rem; text-align: center; color: var(--accent); background: var(--code); margin: 0; }
footer.wide { color: var(--soft); font-size: .85rem; padding-block: 2.5rem 3rem; }
[hidden] { display: none !important; }
@media (max-width: 44rem) { .lead { grid-template-columns: 1fr; }
  .lead .original { justify-self: start; } .bar nav { display: none; } .bar input { margin: 0; flex: 1; } }
@media print { .bar, button { display: none; } figure { break-inside: avoid; } }
)css";

const char* const kGalleryScript = R"js(
document.querySelectorAll(".pair").forEach(pair => {
  const slider = pair.querySelector("input");
  const show = () => pair.style.setProperty("--split", slider.value + "%");
  slider.addEventListener("input", show);
  pair.addEventListener("pointermove", event => {
    const box = pair.getBoundingClientRect();
    slider.value = 100 * (event.clientX - box.left) / box.width;
    show();
  });
  pair.addEventListener("pointerleave", () => { slider.value = 50; show(); });
});
document.querySelectorAll("figure button").forEach(button => {
  button.hidden = false;
  button.addEventListener("click", () => {
    const isLarge = button.closest("figure").classList.toggle("large");
    button.textContent = isLarge ? "Smaller" : "Larger";
    button.closest("figure").scrollIntoView({ block: "nearest" });
  });
});
const filter = document.getElementById("filter");
filter.hidden = false;
filter.addEventListener("input", () => {
  const wanted = filter.value.trim().toLowerCase();
  document.querySelectorAll("section").forEach(section => {
    const figures = Array.from(section.querySelectorAll("figure"));
    figures.forEach(figure => { figure.hidden = !figure.dataset.words.includes(wanted); });
    section.hidden = figures.every(figure => figure.hidden);
  });
});
)js";

}  // namespace zlv
