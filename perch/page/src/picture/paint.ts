// Puts pictures onto canvases, each picture once.
import type { Picture } from '../server/api';

const painted = new WeakMap<HTMLCanvasElement, Picture>();

// Whether the canvas had another picture before.
export function paintOn(canvas: HTMLCanvasElement, picture: Picture): boolean {
  if (painted.get(canvas) === picture) return false;
  painted.set(canvas, picture);
  const { width, height, image } = picture;
  if (canvas.width !== width) canvas.width = width;
  if (canvas.height !== height) canvas.height = height;
  const context = canvas.getContext('2d');
  if (context) context.globalCompositeOperation = 'copy';
  if (image instanceof ImageData) {
    context?.putImageData(image, 0, 0);
  } else {
    context?.drawImage(image, 0, 0);
  }
  return true;
}
