// Runs inside a report page; writes "ok ..." or what is wrong into the page around it.
(function () {
  const problems = [];
  const say = (text) => { if (problems.length < 5) problems.push(text); };
  const name = (element) => element.tagName + "." + (element.getAttribute("class") || "") +
    " [" + (element.textContent || "").trim().slice(0, 30) + "]";

  const shapes = document.querySelectorAll("svg path, svg polyline, svg rect");
  const figures = document.querySelectorAll("svg");
  if (!document.querySelector("svg.wave path")) say("no waveform");
  for (const figure of figures) {
    const box = figure.getBoundingClientRect();
    if (!(box.width > 20 && box.height > 5)) say("empty figure " + name(figure));
    if (figure.childElementCount === 0) say("figure without shapes");
  }
  for (const shape of shapes) {
    const box = shape.getBBox();
    if (!(box.width > 0) || (shape.tagName !== "polyline" && !(box.height > 0))) {
      say("nothing drawn by " + shape.tagName + " " + shape.getAttribute("class"));
    }
    if (box.x < -1 || box.y < -1 || box.x + box.width > 1006 || box.y + box.height > 101) {
      say("drawn outside the figure: " + shape.tagName);
    }
  }

  const wide = document.documentElement;
  if (wide.scrollWidth > wide.clientWidth) {
    say("scrolls sideways: " + wide.scrollWidth + " > " + wide.clientWidth);
  }
  let texts = 0;
  for (const element of document.body.querySelectorAll("*")) {
    if (element.closest("svg") || element.tagName === "SCRIPT") continue;
    const own = [...element.childNodes].some((n) => n.nodeType === 3 && n.textContent.trim());
    if (!own) continue;
    ++texts;
    if (getComputedStyle(element).display !== "inline" &&
        (element.scrollWidth > element.clientWidth + 1 ||
         element.scrollHeight > element.clientHeight + 1)) {
      say("text overflows " + name(element));
    }
    // Every line of the text lies in the box of the block around it.
    const block = element.closest("li, article, p, h2, figcaption, td, main");
    const bounds = block.getBoundingClientRect();
    for (const rect of element.getClientRects()) {
      if (rect.left < bounds.left - 1 || rect.right > bounds.right + 1) {
        say("text leaves its box: " + name(element));
      }
    }
    const size = parseFloat(getComputedStyle(element).fontSize);
    if (size < 12) say("text of " + size + " px: " + name(element));
  }
  if (performance.getEntriesByType("resource").length > 0) say("fetches something");
  parent.document.getElementById("result").textContent = problems.length ? problems.join("; ")
    : "ok " + figures.length + " figures, " + shapes.length + " shapes, " + texts + " texts";
})();
