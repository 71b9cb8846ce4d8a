// The page's folder, in which its scripts are started.
import { pathToFileURL } from 'node:url';

export const pageFolder = pathToFileURL(`${process.cwd()}/`);
