// Pictures from the server: of what is there now, never of what was.
import { type DrawRequest, Lost, Mistakes, type Problem, Refused, draw, type Drawn } from './server';
import { TOPMOST, current, update, watch } from './store';

export function problemsOf(error: unknown): Problem[] {
  if (error instanceof Mistakes) return error.problems;
  if (error instanceof Refused) return [{ path: '$', reason: error.message, allowed: '' }];
  throw error;
}

// Draws what `wanted` gives whenever it changes, one at a time; what changes meanwhile waits, and only
// the last of it is drawn.
class Loop {
  private last: unknown[] = [];
  private isBusy = false;

  constructor(
    private readonly wanted: () => DrawRequest | undefined,
    private readonly take: (drawn: Drawn | undefined, problems: Problem[]) => void,
    private readonly tell: (isBusy: boolean) => void = () => {},
  ) {}

  async run() {
    if (this.isBusy) return;
    this.isBusy = true;
    this.tell(true);
    try {
      for (let request = this.next(); request; request = this.next()) await this.drawOne(request);
    } catch (error) {
      if (!(error instanceof Lost)) throw error;
      this.last = [];
      update({ isLost: true });
    } finally {
      this.isBusy = false;
      this.tell(false);
    }
  }

  private next(): DrawRequest | undefined {
    const request = this.wanted();
    if (!request || current().isLost) return undefined;
    const key = [request.style, request.name, request.scale];
    if (key.every((part, index) => part === this.last[index])) return undefined;
    this.last = key;
    return request;
  }

  private async drawOne(request: DrawRequest) {
    try {
      this.take(await draw(request), []);
    } catch (error) {
      this.take(undefined, problemsOf(error));
    }
  }
}

function selectedOf(drawn: Drawn): number {
  const { selected } = current();
  return selected === TOPMOST ? (drawn.stacking.at(-1) ?? TOPMOST) : selected;
}

// The picture of what is edited, and that of what it is compared with.
export function startDrawing() {
  const scale = () => current().density || 1;
  const main = new Loop(
    () => ({ style: withText(current().style), name: current().name, scale: scale() }),
    (drawn, problems) => update(drawn ? { drawn, problems, selected: selectedOf(drawn) } : { problems }),
    // Not a part of the state: nothing else on the page changes with it.
    (isBusy) => document.querySelector('.room')?.setAttribute('aria-busy', String(isBusy)),
  );
  const other = new Loop(
    () => {
      const { comparison, name } = current();
      return comparison && { style: comparison.style, name, scale: scale() };
    },
    (drawn) => update({ compared: drawn }),
  );
  const run = () => {
    void main.run();
    void other.run();
  };
  watch(run);
  run();
}

const spaced = new WeakMap<object, Record<string, unknown>>();

// While there is no text the picture has a space in its place, which is none.
export function withText(style: Record<string, unknown>): Record<string, unknown> {
  if (style.text) return style;
  let other = spaced.get(style);
  if (!other) {
    other = { ...style, text: ' ' };
    spaced.set(style, other);
  }
  return other;
}
