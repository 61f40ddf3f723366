// A list of which only the rows that can be seen are elements, so that it may have a million.

const most_height = 8_000_000;  // browsers draw no element that is much higher

export class RowList {
  // `draw` fills the element of a row. The rows have the height that the style sheet gives to `--row`.
  constructor(frame, draw) {
    this.frame = frame;
    this.draw = draw;
    this.count = 0;
    this.rows = new Map();  // those that are elements, by index
    this.space = document.createElement("div");
    this.space.className = "space";
    this.space.setAttribute("role", "presentation");
    frame.append(this.space);
    frame.addEventListener("scroll", () => this.later());
    new ResizeObserver(() => this.later()).observe(frame);
  }

  get height() { return this.measured ??= parseFloat(getComputedStyle(this.frame).getPropertyValue("--row")) || 22; }

  // What is not drawn of the list for each pixel that it is scrolled.
  get scale() {
    const seen = this.frame.clientHeight;
    const full = this.count * this.height;
    return full <= most_height ? 1 : (full - seen) / (most_height - seen);
  }

  get top() { return this.frame.scrollTop * this.scale; }

  setCount(count) {
    this.count = count;
    this.space.style.height = `${Math.min(count * this.height, most_height)}px`;
    this.redraw();
  }

  later() {
    if (this.pending) return;
    this.pending = true;
    requestAnimationFrame(() => {
      this.pending = false;
      this.show();
    });
  }

  redraw() {
    for (const row of this.rows.values()) row.stale = true;
    this.later();
  }

  show() {
    const seen = this.frame.clientHeight;
    const first = Math.max(0, Math.floor(this.top / this.height) - 4);
    const last = Math.min(this.count, Math.ceil((this.top + seen) / this.height) + 4);
    for (const [index, row] of this.rows) {
      if (index >= first && index < last) continue;
      row.remove();
      this.rows.delete(index);
    }
    for (let index = first; index < last; ++index) {
      let row = this.rows.get(index);
      if (!row) {
        row = document.createElement("div");
        row.stale = true;
        this.rows.set(index, row);
        this.space.append(row);
      }
      row.style.transform = `translateY(${this.place(index)}px)`;
      if (row.stale) {
        row.stale = false;
        row.className = "row";
        row.replaceChildren();
        this.draw(index, row);
      }
    }
  }

  // Where a row is drawn in the space.
  place(index) { return index * this.height - this.top + this.frame.scrollTop; }

  reveal(index) {
    const at = index * this.height;
    const seen = this.frame.clientHeight;
    if (at >= this.top && at + this.height <= this.top + seen) return;
    this.frame.scrollTop = Math.max(0, at - seen / 3) / this.scale;
    this.show();
  }
}
