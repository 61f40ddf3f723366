// The JSON: lines that follow the other views, or a text to edit.
import {byId, span} from "./elements.js";
import {RowList} from "./row_list.js";
import {bytesOf, textOf} from "./text.js";

const tokens = /"(?:[^"\\]|\\.)*"?(\s*:)?|-?\d+|true|false/g;
const mostText = 262144;  // a longer text is edited in parts, because a text field draws all of it

export class JsonView {
  constructor(page) {
    this.page = page;
    this.frame = byId("json");
    this.text = byId("json-text");
    this.problem = byId("json-problem");
    this.list = new RowList(this.frame, (line, row) => this.drawLine(line, row));
    this.frame.addEventListener("pointerover", event => this.page.mark(this.nodeOf(event.target)));
    this.frame.addEventListener("pointerleave", () => this.page.mark(-1));
    this.frame.addEventListener("click", event => this.page.select(this.nodeOf(event.target), this));
    this.frame.addEventListener("keydown", event => {
      if (event.key === "Enter") byId("json-edit").click();
    });
    byId("json-edit").addEventListener("click", () => this.setEditing(this.text.hidden));
    this.text.addEventListener("input", () => this.changed());
    this.text.addEventListener("keydown", event => {
      if (event.key === "Escape") this.setEditing(false);
    });
  }

  get message() { return this.page.message; }
  get isEditing() { return !this.text.hidden; }

  show() {
    this.list.setCount(this.message.lines.length);
    if (this.isEditing && !this.isSource) this.fill();
  }

  redraw() { this.list.redraw(); }

  lineRange(line) {
    const {lines, json} = this.message;
    return [lines[line], line + 1 < lines.length ? lines[line + 1] : json.length];
  }

  drawLine(line, row) {
    const {message} = this;
    const [start, end] = this.lineRange(line);
    const marked = this.page.current;
    const from = marked < 0 ? 0 : message.get(marked, "jsonStart"), to = marked < 0 ? 0 : message.get(marked, "jsonEnd");
    // Cut where the mark begins and ends, then coloured.
    const cuts = [start, ...[from, to].filter(at => at > start && at < end), end];
    for (let part = 0; part + 1 < cuts.length; ++part) {
      const text = textOf(message.json.subarray(cuts[part], cuts[part + 1])).replace(/\n$/, "");
      const isMarked = cuts[part] >= from && cuts[part] < to;
      this.drawText(row, text, cuts[part], end, isMarked ? " marked" : "");
    }
    row.setAttribute("role", "listitem");
  }

  drawText(row, text, offset, end, mark) {
    let done = 0;
    const add = (className, piece) => {
      if (piece === "") return;
      const part = span(className + mark, piece);
      part.dataset.node = this.message.nodeInJson(offset, end);
      row.append(part);
      offset += bytesOf(piece).length;
    };
    for (const match of text.matchAll(tokens)) {
      add("mark", text.slice(done, match.index));
      add(match[1] !== undefined ? "name" : match[0].startsWith("\"") ? "string" : "number", match[0]);
      done = match.index + match[0].length;
    }
    add("mark", text.slice(done));
  }

  nodeOf(target) { return target.dataset.node === undefined ? -1 : Number(target.dataset.node); }

  reveal(node) {
    const {message} = this;
    if (node < 0 || message.get(node, "jsonEnd") === 0) return;
    const at = message.get(node, "jsonStart");
    this.list.reveal(message.lastUpTo(message.lines.length, line => message.lines[line], at));
  }

  setEditing(isEditing) {
    if (isEditing && !this.message) return;
    this.text.hidden = !isEditing;
    this.frame.hidden = isEditing;
    byId("json-edit").textContent = isEditing ? "Done" : "Edit";
    this.say("");
    if (isEditing) {
      this.fill();
      this.text.focus();
    } else {
      this.frame.focus();
      this.redraw();
    }
  }

  // The whole, or of a long text the value that is selected.
  fill() {
    const {message} = this;
    const node = message.json.length <= mostText ? -1 : this.page.selected;
    const [from, to] = node < 0 ? [0, message.json.length] : [message.get(node, "jsonStart"), message.get(node, "jsonEnd")];
    this.path = node < 0 ? null : message.pathOf(node);
    const isTooLong = to - from > mostText;
    this.text.value = isTooLong ? "" : textOf(message.json.subarray(from, to));
    this.text.readOnly = isTooLong;
    if (isTooLong) this.say(`The text is too long to edit as a whole (${to - from} bytes): select a part of it first.`);
  }

  async changed() {
    clearTimeout(this.waiting);
    this.waiting = setTimeout(() => this.apply(), 120);
  }

  async apply() {
    const {value} = this.text;
    const change = this.path === null ? ["encode", this.page.type, value]
                                      : ["withValue", this.message.nodeOf(this.path), value];
    this.isSource = true;
    try {
      await this.page.change(...change);
      this.say("");
    } catch (error) {
      this.say(error.message, error.at);
    } finally {
      this.isSource = false;
    }
  }

  // Says what is wrong, and selects the place if the reader is not in the middle of typing elsewhere.
  say(problem, at = -1) {
    this.problem.textContent = problem;
    this.text.setAttribute("aria-invalid", String(problem !== ""));
    if (at < 0 || problem === "") return;
    const before = textOf(bytesOf(this.text.value).subarray(0, at));
    const line = before.split("\n").length - 1;
    this.text.style.setProperty("--problem", line);
  }
}
