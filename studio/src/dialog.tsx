// A window that waits for an answer.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef } from 'preact/hooks';
import { words } from './words';

export interface DialogProps {
  close(): void;
}

export function Dialog({ title, close, children }: { title: string; children: ComponentChildren } & Partial<DialogProps>) {
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => {
    const opener = document.activeElement as HTMLElement | null;
    dialog.current?.showModal();
    return () => opener?.focus();
  }, []);
  return (
    <dialog ref={dialog} aria-labelledby="dialog-title" onClose={() => close?.()} onCancel={(event) => !close && event.preventDefault()}>
      <h2 id="dialog-title">{title}</h2>
      {children}
      {close && (
        <button type="button" class="close" onClick={() => close()}>
          {words.close}
        </button>
      )}
    </dialog>
  );
}
