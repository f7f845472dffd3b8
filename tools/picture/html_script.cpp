#include "tools/picture/html_script.h"

namespace tool {

std::string_view html_script() {
  return R"JS(
'use strict';
const SVG = 'http://www.w3.org/2000/svg';

// ---- Explanations beside the pointer, instead of the browser's own small ones ----

const told = document.createElement('div');
told.id = 'told';
told.setAttribute('role', 'status');
told.hidden = true;
document.body.append(told);

function place(x, y) {
  const box = told.getBoundingClientRect();
  const left = Math.min(x + 16, innerWidth - box.width - 8);
  const top = y + 16 + box.height > innerHeight ? y - box.height - 12 : y + 16;
  told.style.left = Math.max(8, left) + 'px';
  told.style.top = Math.max(8, top) + 'px';
}

function tell(words, x, y) {
  told.textContent = words;
  told.hidden = false;
  place(x, y);
}

for (const title of document.querySelectorAll('svg rect > title, svg text > title')) {
  const part = title.parentNode;
  const words = title.textContent;
  title.remove();
  const own = part.tagName === 'text' ? part.textContent + '\n\n' : '';
  part.setAttribute('aria-label', own + words);
  part.addEventListener('pointermove', event => tell(words, event.clientX, event.clientY));
  part.addEventListener('pointerleave', () => { told.hidden = true; });
}

// ---- The bar: the bytes from `first` to `end` are shown ----

const map = document.getElementById('map');
if (map) makeZoomable(map);

function makeZoomable(map) {
  const left = Number(map.dataset.x);
  const width = Number(map.dataset.width);
  const bytes = Number(map.dataset.bytes);
  const bands = [...map.querySelectorAll('rect[data-first]')].map(rect => ({
    rect,
    first: Number(rect.dataset.first),
    end: Number(rect.dataset.end),
    labels: rect.dataset.labels ? rect.dataset.labels.split('\n') : [],
  }));
  const top = Number(bands[0].rect.getAttribute('y'));
  const height = Number(bands[0].rect.getAttribute('height'));
  for (const old of map.querySelectorAll('text, .tick-line')) old.remove();
  const lenses = map.querySelectorAll('.lens');  // of the whole bar
  const words = document.createElementNS(SVG, 'g');
  map.append(words);
  let first = 0;
  let end = bytes;

  const xOf = byte => left + width * (byte - first) / (end - first);
  const byteAt = x => first + (end - first) * (x - left) / width;

  function addText(kind, x, y, anchor, content) {
    const text = document.createElementNS(SVG, 'text');
    text.setAttribute('class', kind);
    text.setAttribute('x', x);
    text.setAttribute('y', y);
    text.setAttribute('text-anchor', anchor);
    text.textContent = content;
    words.append(text);
    return text;
  }

  function addLabel(band, from, to) {
    for (const label of band.labels) {
      if (label.length * 7 + 8 > to - from) continue;
      const text = addText('label', (from + to) / 2, top + height / 2 + 4, 'middle', label);
      if (text.getComputedTextLength() + 6 <= to - from) return;
      text.remove();
    }
  }

  function addTick(byte, anchor) {
    const line = document.createElementNS(SVG, 'path');
    line.setAttribute('class', 'tick-line');
    line.setAttribute('d', `M${xOf(byte)},${top + height} v5`);
    words.append(line);
    addText('tick', xOf(byte), top + height + 16, anchor,
      '0x' + Math.round(byte).toString(16).toUpperCase());
  }

  function addAxis() {
    const room = (Math.round(end).toString(16).length + 2) * 6.4 + 24;
    let step = 1;
    while (step * width / (end - first) < room) step *= 2;
    addTick(first, 'start');
    addTick(end, 'end');
    for (let byte = (Math.floor(first / step) + 1) * step; byte < end; byte += step) {
      const x = xOf(byte);
      if (x - left > room * 1.5 - 24 && left + width - x > room * 1.5 - 24) addTick(byte, 'middle');
    }
  }

  function draw() {
    words.replaceChildren();
    for (const lens of lenses) lens.style.display = end - first < bytes ? 'none' : '';
    for (const band of bands) {
      const from = Math.max(xOf(band.first), left);
      const to = Math.min(xOf(band.end), left + width);
      band.rect.style.display = to > from ? '' : 'none';
      if (to <= from) continue;
      band.rect.setAttribute('x', from);
      band.rect.setAttribute('width', to - from);
      band.rect.classList.toggle('edge', to - from >= 4);
      addLabel(band, from, to);
    }
    addAxis();
  }

  function show(from, to) {
    const shown = Math.min(Math.max(to - from, Math.min(bytes, 16)), bytes);
    first = Math.min(Math.max(0, Math.round(from)), bytes - shown);
    end = first + shown;
    draw();
  }

  function zoom(byte, factor) {
    const shown = Math.round((end - first) * factor);
    const share = (byte - first) / (end - first);
    show(byte - shown * share, byte + shown * (1 - share));
  }

  function byteUnder(event) {
    const point = new DOMPoint(event.clientX, event.clientY);
    return byteAt(point.matrixTransform(map.getScreenCTM().inverse()).x);
  }

  map.addEventListener('wheel', event => {
    event.preventDefault();
    zoom(byteUnder(event), event.deltaY < 0 ? 0.7 : 1 / 0.7);
  }, { passive: false });

  let held = null;
  map.addEventListener('pointerdown', event => { held = byteUnder(event); });
  addEventListener('pointerup', () => { held = null; });
  map.addEventListener('pointermove', event => {
    if (held === null || !(event.buttons & 1)) return;
    const shift = held - byteUnder(event);
    show(first + shift, end + shift);
  });
  map.addEventListener('dblclick', event => {
    const band = bands.find(band => band.rect === event.target);
    if (!band) return;
    const beside = (band.end - band.first) / 8;
    show(Math.max(0, band.first - beside), Math.min(bytes, band.end + beside));
  });

  const middle = () => (first + end) / 2;
  const aside = () => (end - first) / 4;
  const actions = {
    'zoom in (+)': ['+', () => zoom(middle(), 0.5)],
    'zoom out (-)': ['-', () => zoom(middle(), 2)],
    '\u25c0': ['ArrowLeft', () => show(first - aside(), end - aside())],
    '\u25b6': ['ArrowRight', () => show(first + aside(), end + aside())],
    'whole allocation (0)': ['0', () => show(0, bytes)],
  };
  const bar = document.getElementById('zoom');
  for (const [name, [key, action]] of Object.entries(actions)) {
    const button = document.createElement('button');
    button.type = 'button';
    button.textContent = name;
    button.addEventListener('click', action);
    bar.append(button);
    addEventListener('keydown', event => {
      if (event.key !== key || event.ctrlKey || event.metaKey || event.altKey) return;
      event.preventDefault();
      action();
    });
  }
  draw();
  bar.hidden = false;
}
)JS";
}

}  // namespace tool
