// Signs of buttons: lines on a grid of 16.
const PATHS = {
  grip: 'M6 3v.01M10 3v.01M6 8v.01M10 8v.01M6 13v.01M10 13v.01',
  shown: 'M1.5 8C4 3.5 12 3.5 14.5 8 12 12.5 4 12.5 1.5 8ZM8 6a2 2 0 1 0 .01 0Z',
  hidden: 'M1.5 8C4 12.5 12 12.5 14.5 8M3.5 11.5l-1 1.5M8 11.5v2M12.5 11.5l1 1.5',
  up: 'M8 13V3M4 7l4-4 4 4',
  down: 'M8 3v10M4 9l4 4 4-4',
  duplicate: 'M5.5 5.5h8v8h-8ZM10.5 5.5v-3h-8v8h3',
  remove: 'M2.5 4.5h11M6 4.5v-2h4v2M4 4.5l.7 9h6.6l.7-9M6.8 7v4M9.2 7v4',
  undo: 'M6 3 2.5 6.5 6 10M3 6.5h6.5a3.5 3.5 0 0 1 0 7H7',
  redo: 'M10 3l3.5 3.5L10 10M13 6.5H6.5a3.5 3.5 0 0 0 0 7H9',
};

export type IconName = keyof typeof PATHS;

export function Icon({ name }: { name: IconName }) {
  return (
    <svg class="icon" viewBox="0 0 16 16" aria-hidden="true">
      <path d={PATHS[name]} />
    </svg>
  );
}
