// Small pictures of styles that one may choose from.
import { useEffect, useState } from 'preact/hooks';
import { withText } from './drawing';
import { Canvas } from './picture';
import { type Drawn, type Json, draw } from './server';
import { current } from './store';

const FIT: [number, number] = [260, 90]; // twice as many pixels as are seen
const SHOWN_WIDTH = 126;
const WAIT_MILLISECONDS = 250;

const drawSmall = (style: Json) => draw({ style: withText(style), name: current().name, fit: FIT });

// Drawn one after the other, anew when `key` is another; undefined until then, and where it cannot be.
// And whether all are of this key.
export function useThumbnails(styles: Json[], key: string): [(Drawn | undefined)[], boolean] {
  const [pictures, setPictures] = useState<(Drawn | undefined)[]>([]);
  const [drawnKey, setDrawnKey] = useState<string>();
  useEffect(() => {
    let isStale = false;
    const drawAll = async () => {
      for (const [index, style] of styles.entries()) {
        // What is wrong with a style is said when it is chosen. Most often it is a font that is not here.
        const drawn = await drawSmall(style).catch(() => drawSmall({ ...style, font: undefined }).catch(() => undefined));
        if (isStale) return;
        setPictures((before) => Object.assign([...before], { [index]: drawn }));
      }
      setDrawnKey(key);
    };
    const timer = setTimeout(() => void drawAll(), WAIT_MILLISECONDS);
    return () => {
      isStale = true;
      clearTimeout(timer);
    };
  }, [key]);
  return [pictures, drawnKey === key];
}

export function Thumbnail({ drawn }: { drawn: Drawn | undefined }) {
  return <span class="thumbnail">{drawn && <Canvas drawn={drawn} factor={Math.min(0.9, SHOWN_WIDTH / drawn.width)} label="" />}</span>;
}
