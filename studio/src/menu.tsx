// Lists that are gone through with arrow keys and take one stop of the Tab key.
import { useLayoutEffect, useRef, useState } from 'preact/hooks';

// What an arrow key, Home, End or a letter leads to among buttons in rows; undefined for other keys.
export function nextButton(event: KeyboardEvent, buttons: HTMLElement[], index: number): number | undefined {
  const inRow = buttons.filter((button) => button.offsetTop === buttons[0].offsetTop).length;
  const last = buttons.length - 1;
  const moves: Record<string, number> = { ArrowLeft: index - 1, ArrowRight: index + 1, ArrowUp: index - inRow, ArrowDown: index + inRow, Home: 0, End: last };
  if (event.ctrlKey || event.altKey || event.metaKey) return undefined;
  if (event.key in moves) return Math.max(0, Math.min(last, moves[event.key]));
  if (event.key.length > 1 || event.key === ' ') return undefined;
  const starts = (button: HTMLElement) => button.textContent?.toLowerCase().startsWith(event.key.toLowerCase());
  // From the next one on, and around.
  const turned = [...buttons.slice(index + 1), ...buttons.slice(0, index + 1)];
  const found = turned.find(starts);
  return found ? buttons.indexOf(found) : undefined;
}

// Moves the focus among the buttons of an element; whether it took the key.
export function moveFocus(event: KeyboardEvent): boolean {
  const buttons = [...(event.currentTarget as Element).querySelectorAll<HTMLElement>('button')];
  const next = nextButton(event, buttons, buttons.indexOf(document.activeElement as HTMLElement));
  if (next === undefined) return false;
  event.preventDefault();
  buttons[next].focus();
  return true;
}

export interface MenuItem {
  name: string;
  hint?: string;
  act(): void;
}

// A button that opens a list of things to do.
export function Menu({ text, name, items }: { text: string; name: string; items: MenuItem[] }) {
  const [isOpen, setOpen] = useState(false);
  const opener = useRef<HTMLButtonElement>(null);
  const list = useRef<HTMLDivElement>(null);
  useLayoutEffect(() => {
    if (isOpen) list.current?.querySelector('button')?.focus();
  }, [isOpen]);
  const close = () => {
    setOpen(false);
    opener.current?.focus();
  };
  const keys = (event: KeyboardEvent) => {
    if (event.key === 'Escape') close();
    else if (event.key === 'Tab') setOpen(false);
    else moveFocus(event);
  };
  return (
    <div class="menu" onFocusOut={(event) => !event.currentTarget.contains(event.relatedTarget as Node | null) && setOpen(false)}>
      <button ref={opener} type="button" class="opener" aria-label={name} aria-haspopup="menu" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)} onKeyDown={(event) => event.key === 'ArrowDown' && setOpen(true)}>
        {text}
      </button>
      {isOpen && (
        <div class="popup" role="menu" aria-label={name} ref={list} onKeyDown={keys}>
          {items.map((item) => (
            <button
              type="button"
              role="menuitem"
              tabIndex={-1}
              onClick={() => {
                close();
                item.act();
              }}
            >
              {item.name}
              {item.hint && <span class="hint">{item.hint}</span>}
            </button>
          ))}
        </div>
      )}
    </div>
  );
}
