// SPDX-License-Identifier: MIT
// A list of any length, or a tree if its items have levels. Only the visible rows exist as elements.

const height = 24;

export class Rows {
  // items: {text, level, flags, className, hasChildren, title}. In a tree, items follow their parents.
  constructor(host, { label, isTree = false, onSelect = () => {} }) {
    this.host = host;
    this.isTree = isTree;
    this.onSelect = onSelect;
    this.closed = new Set();
    this.current = -1;
    host.classList.add("rows");
    host.tabIndex = 0;
    host.setAttribute("role", isTree ? "tree" : "listbox");
    host.setAttribute("aria-label", label);
    this.space = host.appendChild(document.createElement("div"));
    this.space.setAttribute("role", "presentation");
    host.addEventListener("scroll", () => this.follow());
    host.addEventListener("keydown", (event) => this.key(event));
    new ResizeObserver(() => this.follow()).observe(host);
  }

  set(items) {
    this.items = items;
    this.filter("");
  }

  // Shows the rows whose text or flags contain the words; in a tree, their ancestors too.
  filter(words) {
    const wanted = words.trim().toLowerCase();
    let kept = null;
    if (wanted) {
      kept = new Set();
      const path = [];
      this.items.forEach((item, i) => {
        path.length = item.level ?? 0;
        path.push(i);
        if (`${item.text} ${(item.flags ?? []).join(" ")}`.toLowerCase().includes(wanted))
          (this.isTree ? path : [i]).forEach((k) => kept.add(k));
      });
    }
    this.kept = kept;
    this.layout();
  }

  layout() {
    this.shown = [];
    let closedAt = Infinity;
    this.items.forEach((item, i) => {
      const level = item.level ?? 0;
      if (level <= closedAt) closedAt = Infinity;
      if (level > closedAt || (this.kept && !this.kept.has(i))) return;
      this.shown.push(i);
      if (!this.kept && this.closed.has(i)) closedAt = level;
    });
    this.space.style.height = `${this.shown.length * height}px`;
    this.render();
  }

  render() {
    this.space.replaceChildren();
    this.first = this.last = 0;
    this.follow();
  }

  // Scrolling and resizing keep the elements of rows that stay visible: a row that is replaced while the mouse button is
  // down would miss the click.
  follow() {
    if (!this.shown) return;
    const first = Math.max(0, Math.floor(this.host.scrollTop / height) - 4);
    const last = Math.min(this.shown.length, first + Math.ceil(this.host.clientHeight / height) + 8);
    if (last <= this.first || first >= this.last) {
      this.space.replaceChildren();
      this.first = this.last = first;
    }
    for (; this.first < first; ++this.first) this.space.firstChild.remove();
    for (; this.last > last; --this.last) this.space.lastChild.remove();
    while (this.first > first) this.space.prepend(this.row(--this.first));
    while (this.last < last) this.space.append(this.row(this.last++));
    const current = this.space.querySelector(".current");
    if (current) this.host.setAttribute("aria-activedescendant", current.id);
    else this.host.removeAttribute("aria-activedescendant");
  }

  row(at) {
    const index = this.shown[at], item = this.items[index];
    const row = document.createElement("div");
    row.className = `row ${item.className ?? ""} ${at === this.current ? "current" : ""}`;
    row.id = `${this.host.id}-${index}`;
    row.style.top = `${at * height}px`;
    row.style.paddingLeft = `${6 + (item.level ?? 0) * 14}px`;
    row.setAttribute("role", this.isTree ? "treeitem" : "option");
    row.setAttribute("aria-setsize", this.shown.length);
    row.setAttribute("aria-posinset", at + 1);
    row.setAttribute("aria-selected", at === this.current);
    if (this.isTree) {
      row.setAttribute("aria-level", (item.level ?? 0) + 1);
      const twist = row.appendChild(document.createElement("span"));
      twist.className = "twist";
      twist.textContent = item.hasChildren ? (this.closed.has(index) ? "▸" : "▾") : "";
      if (item.hasChildren) row.setAttribute("aria-expanded", !this.closed.has(index));
      twist.addEventListener("click", (event) => { event.stopPropagation(); this.fold(index); });
    }
    row.append(item.text);
    for (const flag of item.flags ?? []) {
      const mark = row.appendChild(document.createElement("span"));
      mark.className = "flag";
      mark.textContent = flag;
    }
    if (item.title) row.title = item.title;
    row.addEventListener("click", () => this.select(at));
    return row;
  }

  fold(index) {
    if (!this.items[index].hasChildren) return;
    if (!this.closed.delete(index)) this.closed.add(index);
    this.layout();
  }

  select(at) {
    this.current = Math.max(0, Math.min(at, this.shown.length - 1));
    const top = this.current * height;
    if (top < this.host.scrollTop) this.host.scrollTop = top;
    if (top + height > this.host.scrollTop + this.host.clientHeight)
      this.host.scrollTop = top + height - this.host.clientHeight;
    this.render();
    if (this.shown.length) this.onSelect(this.items[this.shown[this.current]]);
  }

  key(event) {
    const index = this.shown[this.current];
    const page = Math.max(1, Math.floor(this.host.clientHeight / height) - 1);
    const moves = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity };
    if (event.key in moves) this.select(this.current + moves[event.key]);
    else if (event.key === "ArrowRight" && this.closed.has(index)) this.fold(index);
    else if (event.key === "ArrowLeft" && index !== undefined && !this.closed.has(index)) this.fold(index);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }
}
