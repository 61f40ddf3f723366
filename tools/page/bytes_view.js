// The bytes, sixteen to a line, in the colours of what they are.
import {byId, element, span} from "./elements.js";
import {RowList} from "./row_list.js";

const roleNames = {k: "key", l: "length", v: "value", x: "excess"};

export class BytesView {
  constructor(page) {
    this.page = page;
    this.frame = byId("bytes");
    this.list = new RowList(this.frame, (line, row) => this.drawLine(line, row));
    this.frame.addEventListener("pointerover", event => this.page.mark(this.nodeOf(event.target)));
    this.frame.addEventListener("pointerleave", () => this.page.mark(-1));
    this.frame.addEventListener("click", event => this.page.select(this.nodeOf(event.target), this));
    this.frame.addEventListener("keydown", event => this.key(event));
    new ResizeObserver(() => this.fit()).observe(this.frame);
  }

  get message() { return this.page.message; }

  // As many bytes to a line as there is room for.
  fit() {
    const perLine = this.frame.clientWidth > 44 * parseFloat(getComputedStyle(this.frame).fontSize) ? 16 : 8;
    if (perLine === this.perLine) return;
    this.perLine = perLine;
    this.show();
  }

  show() {
    if (this.message) this.list.setCount(Math.ceil(this.message.bytes.length / this.perLine));
  }

  redraw() { this.list.redraw(); }

  drawLine(line, row) {
    const {message, perLine} = this;
    const first = line * perLine, last = Math.min(first + perLine, message.bytes.length);
    const marked = this.page.current;
    const from = marked < 0 ? 0 : message.get(marked, "start"), to = marked < 0 ? 0 : message.get(marked, "end");
    row.append(span("offset", first.toString(16).padStart(6, "0")));
    let characters = "";
    for (let at = first, node = message.nodeAtByte(first); at < last; ++at) {
      while (node + 1 < message.count && message.get(node + 1, "start") <= at) ++node;
      const byte = message.bytes[at];
      const hex = span(this.classOf(node, at), byte.toString(16).padStart(2, "0"));
      if (at >= from && at < to) hex.classList.add("marked");
      hex.dataset.node = node;
      row.append(hex);
      characters += byte >= 0x20 && byte < 0x7f ? String.fromCharCode(byte) : ".";
    }
    row.append(element("span", {className: "characters", "aria-hidden": "true"}, characters));
    row.setAttribute("role", "listitem");
  }

  classOf(node, at) {
    const words = this.page.descriptions.get(node);
    if (words === null) return "byte";
    if (words.state === "failed" || words.state === "unread" || words.state === "unknown") return `byte ${words.state}`;
    return `byte ${roleNames[words.roles?.[at - this.message.get(node, "start")]] ?? ""}`;
  }

  nodeOf(target) { return target.dataset.node === undefined ? -1 : Number(target.dataset.node); }

  reveal(node) {
    if (node >= 0) this.list.reveal(Math.floor(this.message.get(node, "start") / this.perLine));
  }

  // From one field to the next.
  key(event) {
    const step = {ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1}[event.key];
    if (step === undefined || !this.message || this.message.count === 0) return;
    event.preventDefault();
    const next = Math.min(Math.max(this.page.selected + step, 0), this.message.count - 1);
    this.page.select(next, null);
  }
}
