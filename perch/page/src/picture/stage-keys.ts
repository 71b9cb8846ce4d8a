// The picture by keyboard: a cross that moves by pixels and is clicked with Enter; zoom and pan.
import { clamped } from '../model/number';
import type { PictureStage } from './picture-stage';

const directions: Readonly<Record<string, readonly [number, number]>> = {
  ArrowLeft: [-1, 0],
  ArrowRight: [1, 0],
  ArrowUp: [0, -1],
  ArrowDown: [0, 1],
};

const panStep = 40;
const zoomStep = 1.25;

export function stageKey(stage: PictureStage, event: KeyboardEvent): void {
  if (event.target !== event.currentTarget) return;
  const direction = directions[event.key];
  if (direction && (event.altKey || event.ctrlKey))
    stage.viewing.pan(-direction[0] * panStep, -direction[1] * panStep);
  else if (direction) moveCursor(stage, direction, event.shiftKey ? 10 : 1);
  else if (event.key === 'Enter' && event.shiftKey) markSpan(stage);
  else if (event.key === 'Enter') stage.tell('pick', stage.cursor);
  else if (event.key === '+' || event.key === '=') stage.viewing.zoom(zoomStep);
  else if (event.key === '-') stage.viewing.zoom(1 / zoomStep);
  else if (event.key === 'Escape') stage.cursor = stage.mark = null;
  else return;
  event.preventDefault();
}

function moveCursor(stage: PictureStage, [x, y]: readonly [number, number], step: number): void {
  const { width, height } = stage.viewing.picture;
  const from = stage.cursor ?? { x: Math.floor(width / 2), y: Math.floor(height / 2) };
  stage.cursor = {
    x: clamped(from.x + x * step, 0, width - 1),
    y: clamped(from.y + y * step, 0, height - 1),
  };
  stage.tell('hover', stage.cursor);
}

function markSpan(stage: PictureStage): void {
  const { mark, cursor } = stage;
  stage.mark = mark ? null : cursor;
  if (mark && cursor) stage.tell('span', { from: mark, to: cursor });
}
